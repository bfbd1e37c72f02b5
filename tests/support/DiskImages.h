// Real disk images for tests: made, attached through the built tool, and cleaned away whatever
// becomes of the test.
#pragma once

#include <string>
#include <vector>

#include "tests/support/Program.h"

namespace quillmont::testing {

/// A folder of image files. On destruction every image in it is unmounted and detached, and the
/// folder and the mount folders that were left are removed. Each image holds the file "note.txt".
/// A failure to make an image fails the test and gives an empty path.
class DiskImages {
 public:
  /// The tool runs in `environment`. Where that names no XDG_RUNTIME_DIR, it has one of its own, so
  /// that its records stay out of the user's.
  explicit DiskImages(Environment environment = {});
  ~DiskImages();
  DiskImages(const DiskImages&) = delete;
  DiskImages& operator=(const DiskImages&) = delete;

  /// Why images cannot be attached on this machine by this user; empty if they can.
  static std::string whyImpossible();

  /// Why there can be no volumes of the file system `type` here; empty if there can.
  static std::string whyImpossible(const std::string& type);

  std::string makeExt4(const std::string& name, const std::string& label, int mebibytes = 16);
  std::string makeSquashfs(const std::string& name);
  std::string makeBtrfs(const std::string& name, const std::string& label);
  std::string makeFat(const std::string& name, const std::string& label);
  /// A partition table with one ext4 volume for each of `labels`.
  std::string makePartitioned(const std::string& name, const std::vector<std::string>& labels);

  /// Runs the built disk-image tool with `arguments`.
  Outcome tool(const std::vector<std::string>& arguments) const;
  Outcome attach(const std::string& image) const { return tool({"attach", image}); }
  Outcome detach(const std::string& place) const { return tool({"detach", place, "-force"}); }

  static std::string toolPath();
  /// A copy of the tool in `folder`, for users who cannot look into the build.
  static std::string copyToolTo(const std::string& folder);
  const std::string& path() const { return folder_.path(); }
  const Environment& environment() const { return environment_; }

  /// The real place of the volume that the calling user sees as "/Volumes/<name>".
  static std::string realPlace(const std::string& name);

  /// Names of the loop devices that carry `image`.
  static std::vector<std::string> loopsOf(const std::string& image);

 private:
  std::string newFile(const std::string& name, int mebibytes);
  std::string contents();
  static bool make(const std::vector<std::string>& command);

  TemporaryFolder folder_;
  TemporaryFolder work_;
  Environment environment_;
};

}  // namespace quillmont::testing
