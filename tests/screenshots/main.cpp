// quillmont_screenshots FOLDER: writes pictures of the program into the folder.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>

#include "tests/screenshots/scenes.h"
#include "tests/support/DesktopLab.h"
#include "tests/support/DiskImages.h"
#include "tests/support/forked.h"

namespace quillmont::testing {
namespace {

/// Other programs that watch disk images on this machine shall neither see ours nor lend us theirs.
std::string whyNoImages() {
  if (auto reason = DiskImages::whyImpossible(); !reason.empty()) return reason;
  return enterOwnMountTable() ? "" : "there can be no mounts of our own";
}

int takeAll(const std::string& folder) {
  if (const auto reason = DesktopLab::whyImpossible({.compositor = true}); !reason.empty()) {
    std::fprintf(stderr, "no pictures: %s\n", reason.c_str());
    return 1;
  }
  const auto reason = whyNoImages();
  if (!reason.empty()) {
    std::fprintf(stderr, "no pictures of disk images: %s\n", reason.c_str());
  }
  std::filesystem::create_directories(folder);
  for (auto* const take :
       {takeUsualPictures, takeSharpPictures, takeOpaquePicture, takeBottomPicture}) {
    take(folder, reason.empty());
  }
  return 0;
}

}  // namespace
}  // namespace quillmont::testing

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: quillmont_screenshots FOLDER\n");
    return 2;
  }
  try {
    return quillmont::testing::takeAll(arguments[1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quillmont_screenshots: %s\n", error.what());
    return 1;
  }
}
