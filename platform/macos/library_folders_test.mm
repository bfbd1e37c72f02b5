#include "platform/macos/library_folders.h"

#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include "platform/macos/strings.h"

namespace quillmont {
namespace {

TEST(LibraryFolders, TheFirstOneIsTheUsersOwn) {
  const auto folders = libraryFolders();
  ASSERT_FALSE(folders.empty());
  EXPECT_TRUE(folders.front().starts_with("/")) << folders.front();
  EXPECT_TRUE(folders.front().ends_with("/Library")) << folders.front();
  @autoreleasepool {
    NSArray* const told =
        NSSearchPathForDirectoriesInDomains(NSLibraryDirectory, NSUserDomainMask, YES);
    EXPECT_EQ(folders.front(), utf8String([told objectAtIndex:0]));
  }
}

}  // namespace
}  // namespace quillmont
