#include "platform/linux/LinuxBundle.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace quillmont {
namespace {

TEST(LinuxBundle, IsTheFolderAboveContents) {
  const LinuxBundle bundle("/usr/lib/quillmont/Contents/MacOS/Quillmont");
  EXPECT_EQ(bundle.path(), "/usr/lib/quillmont");
  EXPECT_EQ(bundle.executablePath(), "/usr/lib/quillmont/Contents/MacOS/Quillmont");
  EXPECT_EQ(bundle.identifier(), "com.norwaldex.Quillmont");
}

TEST(LinuxBundle, IsTheProgramsFolderWhereThereIsNoTree) {
  EXPECT_EQ(LinuxBundle("/usr/bin/Quillmont").path(), "/usr/bin");
  EXPECT_EQ(LinuxBundle("/opt/Contents/MacOS/bin/Quillmont").path(), "/opt/Contents/MacOS/bin");
  EXPECT_EQ(LinuxBundle("/opt/MyContents/MacOS/Quillmont").path(), "/opt/MyContents/MacOS");
}

TEST(LinuxBundle, AProgramDeletedBeforeItLookedKeepsItsPath) {
  const LinuxBundle bundle("/home/u/Quill (mont)/Contents/MacOS/Quillmont (deleted)");
  EXPECT_EQ(bundle.path(), "/home/u/Quill (mont)");
  EXPECT_EQ(bundle.executablePath(), "/home/u/Quill (mont)/Contents/MacOS/Quillmont");
}

TEST(LinuxBundle, AFolderInTheTrashIsSeenAsSuch) {
  const LinuxBundle bundle("/home/u/.Trash/Quillmont/Contents/MacOS/Quillmont");
  EXPECT_EQ(bundle.path(), "/home/u/.Trash/Quillmont");
}

TEST(LinuxBundle, AnUnknownPlaceIsNotMistakenForADeletedOne) {
  EXPECT_EQ(LinuxBundle("").path(), "/");
  EXPECT_EQ(LinuxBundle("").executablePath(), std::nullopt);
  EXPECT_EQ(LinuxBundle("/Quillmont").path(), "/");
  EXPECT_EQ(LinuxBundle("/Contents/MacOS/Quillmont").path(), "/");
}

TEST(LinuxBundle, TheRunningProgramKnowsItsPlace) {
  const auto link = LinuxBundle::executableLink();
  ASSERT_TRUE(link.starts_with('/'));
  EXPECT_TRUE(std::filesystem::exists(link));
  EXPECT_EQ(LinuxBundle(link).path(), std::filesystem::path(link).parent_path());
}

}  // namespace
}  // namespace quillmont
