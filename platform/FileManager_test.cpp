#include "platform/FileManager.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

TEST(LastPathComponent, IsReadAsAFilePath) {
  EXPECT_EQ(lastPathComponent("/Volumes/Backup 2"), "Backup 2");
  EXPECT_EQ(lastPathComponent("/Volumes/Backup 2/"), "Backup 2");
  EXPECT_EQ(lastPathComponent("/Volumes/a//"), "a");
  EXPECT_EQ(lastPathComponent("/Volumes/"), "Volumes");
  EXPECT_EQ(lastPathComponent("name"), "name");
  EXPECT_EQ(lastPathComponent("/"), "/");
  EXPECT_EQ(lastPathComponent("//"), "/");
  EXPECT_EQ(lastPathComponent(""), "");
  EXPECT_EQ(lastPathComponent("/Volumes/磁盘\n映像"), "磁盘\n映像");
}

}  // namespace
}  // namespace quillmont
