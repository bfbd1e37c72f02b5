// A process's memory mappings, as /proc/PID/maps tells them (proc(5)).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/tools/lsof/VolumeIdentity.h"

namespace quillmont {

/// The file behind one mapping.
struct MappedFile {
  std::uint64_t device = 0;  ///< makedev() of the file's superblock, also on btrfs
  std::uint64_t inode = 0;
  std::string name;
  bool operator==(const MappedFile&) const = default;
};

/// One line of the table, which points into it.
struct MapLine {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::string_view name;  ///< newlines escaped as \012
  bool operator==(const MapLine&) const = default;
};

/// Reads one line, without its newline. Nothing for memory that has no file behind it, and for a
/// line that is none.
std::optional<MapLine> parseMapLine(std::string_view line);

/// The files of `volume` that are mapped by the process whose table is open as `maps`, one for each
/// mapping. Never asks a file system.
std::vector<MappedFile> mappedFiles(int maps, const VolumeIdentity& volume);

/// The two ways to learn it. The query (Linux 6.11) spares the kernel from spelling out the name of
/// every mapping; it answers nothing on a kernel that does not know it.
std::optional<std::vector<MappedFile>> mappedFilesByQuery(int maps, const VolumeIdentity& volume);
std::vector<MappedFile> mappedFilesByText(int maps, const VolumeIdentity& volume);

}  // namespace quillmont
