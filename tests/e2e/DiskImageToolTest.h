// What the tests of the disk-image tool have in common.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/XmlPropertyLists.h"
#include "platform/posix/files.h"
#include "tests/support/DiskImages.h"

namespace quillmont::testing {

/// The tool with image files of the test's own; skips where images cannot be attached.
class DiskImageToolTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const auto reason = DiskImages::whyImpossible(); !reason.empty()) GTEST_SKIP() << reason;
  }

  /// The mount points that the tool lists for `image`, "" for a device that is not mounted; nothing
  /// if the image is not listed.
  std::optional<std::vector<std::string>> listed(const std::string& image) {
    const auto outcome = images_.tool({"info", "-plist"});
    EXPECT_EQ(outcome.status, 0) << outcome.standardError;
    const auto list = XmlPropertyLists().parse(outcome.standardOutput);
    if (!list) ADD_FAILURE() << list.errorText();
    if (!list || !list->find("images") || !list->find("images")->array()) return std::nullopt;
    for (const auto& entry : *list->find("images")->array()) {
      if (*entry.find("image-path")->string() != image) continue;
      std::vector<std::string> places;
      for (const auto& entity : *entry.find("system-entities")->array()) {
        EXPECT_THAT(*entity.find("dev-entry")->string(), ::testing::StartsWith("/dev/loop"));
        const auto* place = entity.find("mount-point");
        places.push_back(place ? *place->string() : "");
      }
      return places;
    }
    return std::nullopt;
  }

  void attach(const std::string& image) {
    const auto outcome = images_.attach(image);
    ASSERT_EQ(outcome.status, 0) << outcome.standardError;
  }

  void detach(const std::string& place) {
    const auto outcome = images_.detach(place);
    EXPECT_EQ(outcome.status, 0) << outcome.standardError;
  }

  void expectGone(const std::string& image) {
    EXPECT_EQ(listed(image), std::nullopt);
    EXPECT_THAT(DiskImages::loopsOf(image), ::testing::IsEmpty());
  }

  /// The whole life of an image whose one volume is to appear under `name`.
  void comesAndGoes(const std::string& image, const std::string& name) {
    ASSERT_NE(image, "");
    attach(image);
    EXPECT_EQ(listed(image), std::vector<std::string>{"/Volumes/" + name});
    const auto place = DiskImages::realPlace(name);
    EXPECT_EQ(readFile(place + "/note.txt").value(), "kept in an image\n");
    detach("/Volumes/" + name);
    expectGone(image);
    EXPECT_FALSE(std::filesystem::exists(place));
  }

  DiskImages images_;
};

}  // namespace quillmont::testing
