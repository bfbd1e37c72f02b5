#include "platform/macos/MacBundle.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace quillmont {
namespace {

TEST(MacBundle, IsWhereTheTestProgramIs) {
  const MacBundle bundle;
  ASSERT_TRUE(bundle.executablePath());
  EXPECT_TRUE(std::filesystem::is_regular_file(*bundle.executablePath()));
  EXPECT_TRUE(std::filesystem::is_directory(bundle.path())) << bundle.path();
  EXPECT_TRUE(bundle.executablePath()->starts_with(bundle.path())) << *bundle.executablePath();
}

TEST(MacBundle, AProgramOutsideOfABundleHasNoIdentifier) {
  EXPECT_EQ(MacBundle().identifier(), std::nullopt);
}

}  // namespace
}  // namespace quillmont
