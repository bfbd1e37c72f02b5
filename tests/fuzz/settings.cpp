// The settings file, from its bytes to the four settings.

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/linux/PropertyListDefaults.h"
#include "platform/linux/XmlPropertyLists.h"
#include "platform/posix/files.h"
#include "platform/posix/log_text.h"
#include "platform/utf8.h"
#include "tests/fuzz/fuzzing.h"
#include "tests/support/FakeSystem.h"
#include "tests/support/Program.h"

namespace quillmont::testing {
namespace {

constexpr char kDomain[] = "com.norwaldex.Quillmont";
constexpr char kKey[] = "com.norwaldex.quillmont.isEnabled";

struct Store {
  explicit Store(const std::string& folder) : defaults(folder, kDomain, lists, log) {}
  XmlPropertyLists lists;
  RecordingLog log;
  PropertyListDefaults defaults;
};

std::string onlyFileBeside(const std::string& folder, const std::string& path) {
  std::string found;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path() == path) continue;
    require(found.empty(), "a damaged file is set aside once");
    found = entry.path();
  }
  return found;
}

/// Nothing that the user has is lost for what we cannot read.
void checkSetAside(const Store& store, const std::string& folder, const std::string& path,
                   std::string_view bytes) {
  require(store.log.lines.size() == 1, "a damaged file is logged once");
  const auto& line = store.log.lines.front();
  require(isValidUtf8(line) && textOfOneLine(line) == line, "the log's line is a line of UTF-8");
  require(!std::filesystem::exists(path), "a damaged file is out of the way");
  const auto kept = readFile(onlyFileBeside(folder, path));
  require(kept && *kept == bytes, "a damaged file keeps its bytes");
}

/// A write changes its own setting and leaves all others as they were.
void checkWrite(const std::string& folder, Store& store, const PropertyListDictionary& before) {
  store.defaults.setBool(kKey, false);
  const Store again(folder);
  require(again.log.lines.empty(), "what is written can be read");
  require(again.defaults.object(kKey) == PropertyList(false), "a setting is kept");
  const PropertyList all(before);
  for (const auto& [key, value] : before) {
    if (key == kKey) continue;
    const auto kept = again.defaults.object(key);
    require(kept && store.lists.xml(*kept).value() == store.lists.xml(*all.find(key)).value(),
            "other settings stay as they are");
  }
}

}  // namespace

void tryInput(std::string_view input) {
  static const TemporaryFolder home;
  const std::string folder = home.path() + "/settings";
  const std::string path = folder + "/" + kDomain + ".plist";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directory(folder);
  std::ofstream(path, std::ios::binary) << input;

  Store store(folder);
  const auto list = store.lists.parse(input);
  const auto* settings = list ? list->dictionary() : nullptr;
  if (settings) {
    require(store.log.lines.empty(), "settings that can be used are no news");
  } else {
    checkSetAside(store, folder, path, input);
  }
  checkWrite(folder, store, settings ? *settings : PropertyListDictionary());
}

}  // namespace quillmont::testing
