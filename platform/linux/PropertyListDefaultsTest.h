// Settings in a folder of the test's own.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/linux/PropertyListDefaults.h"
#include "platform/linux/XmlPropertyLists.h"
#include "platform/posix/files.h"
#include "tests/support/Program.h"
#include "tests/support/SharedLog.h"

namespace quillmont::testing {

inline std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}

class PropertyListDefaultsTest : public ::testing::Test {
 protected:
  static constexpr char kDomain[] = "com.example.Test";

  /// The store as a new start of the program finds it.
  PropertyListDefaults start() { return {folder(), kDomain, lists_, log_}; }

  std::string folder() const { return home_.path() + "/config"; }
  std::string file() const { return folder() + "/" + kDomain + ".plist"; }

  void place(const std::string& bytes) {
    ASSERT_TRUE(createFolders(folder(), 0700));
    ASSERT_TRUE(replaceFile(file(), bytes));
  }

  PropertyList stored() const {
    const auto bytes = readFile(file());
    if (!bytes) return "missing";
    auto list = lists_.parse(*bytes);
    return list ? *list : PropertyList("damaged");
  }

  std::vector<std::string> damagedNames() const {
    auto names = namesIn(folder());
    std::erase_if(names, [](const auto& name) { return name.find(".damaged-") == name.npos; });
    return names;
  }

  const XmlPropertyLists lists_{};
  SharedLog log_;
  TemporaryFolder home_;
};

}  // namespace quillmont::testing
