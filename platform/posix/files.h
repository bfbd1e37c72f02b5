// Whole files, read and written with care.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/Result.h"

namespace quillmont {

/// To the root folder: one on an image would be held by the program itself, and by every tool that
/// it starts.
void leaveStartFolder();

/// All bytes of the file at `path`. Works on /proc and /sys, whose files have no size. Failure:
/// the system's reason, or a file of more than `limit` bytes.
Result<std::string> readFile(const std::string& path, std::size_t limit = 64u << 20);

/// Writes all of `bytes` to `fd`, through interruptions and short writes.
Result<void> writeAll(int fd, std::string_view bytes);

/// Creates the folder `path` and the missing ones above it with `mode`; an existing folder is a
/// success.
Result<void> createFolders(const std::string& path, unsigned mode);

/// Replaces the file at `path` whole or not at all, even if the machine stops in the middle: a
/// temporary file beside it (`path`.new, mode 0600), fsync, rename, fsync of the folder. The folder
/// must exist. A symbolic link at `path` is replaced, not followed. Writers of one path take turns.
Result<void> replaceFile(const std::string& path, std::string_view bytes);

}  // namespace quillmont
