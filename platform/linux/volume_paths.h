// Where volumes are on Linux, and under which names the program knows them. What the desktop mounts
// for the user under /media/<user>/ or /run/media/<user>/ is presented under /Volumes/; anything
// else keeps its path. Only the tools translate; the program itself sees /Volumes/ alone.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillmont {

/// Where all volumes of disk images are, as the program knows them.
inline constexpr std::string_view kVolumesFolder = "/Volumes/";

/// The name under which the volume mounted at `mountPoint` is presented to the user `user`.
/// `allMountPoints` decides a clash: when both roots hold a volume of one name, the one under
/// /media is presented and the other keeps its path. Bytes that a property list cannot carry
/// (control characters, invalid UTF-8) come as a backslash, an x and two hexadecimal digits, and so
/// does a backslash that such a text already begins with: no two names are presented alike.
std::string presentedVolumePath(const std::string& mountPoint, const std::string& user,
                                const std::vector<std::string>& allMountPoints);

/// Whether `mountPoint` lies where volumes of the user `user` are presented from. Of two volumes
/// that clash both do.
bool isVolumeOfUser(std::string_view mountPoint, const std::string& user);

/// The mount point that is presented as `presented`: the one of `allMountPoints` for which
/// presentedVolumePath() answers it; empty if there is none.
std::string volumeMountPoint(const std::string& presented, const std::string& user,
                             const std::vector<std::string>& allMountPoints);

/// The spelling of any path or name in a property list, as presentedVolumePath() says.
std::string presentable(std::string_view bytes);

}  // namespace quillmont
