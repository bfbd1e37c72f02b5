// The reader of XML property lists: the disk-image tool's list, the settings file, launch agents.

#include <cstddef>
#include <string>

#include "platform/linux/XmlPropertyLists.h"
#include "platform/linux/property_list_reader.h"
#include "platform/posix/log_text.h"
#include "platform/utf8.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

std::size_t countValues(const PropertyList& list) {
  std::size_t count = 1;
  if (const auto* array = list.array()) {
    for (const auto& element : *array) count += countValues(element);
  } else if (const auto* dictionary = list.dictionary()) {
    for (const auto& entry : *dictionary) count += countValues(entry.second);
  }
  return count;
}

void checkTexts(const PropertyList& list) {
  if (const auto* text = list.string()) require(isValidUtf8(*text), "a string is UTF-8");
  if (const auto* date = list.as<PropertyListDate>()) {
    require(isValidUtf8(date->iso8601), "a date is UTF-8");
  }
  if (const auto* array = list.array()) {
    for (const auto& element : *array) checkTexts(element);
  } else if (const auto* dictionary = list.dictionary()) {
    for (const auto& entry : *dictionary) {
      require(isValidUtf8(entry.first), "a key is UTF-8");
      checkTexts(entry.second);
    }
  }
}

/// It becomes a line of the log.
void checkComplaint(const std::string& text) {
  require(!text.empty(), "a failure has a text");
  require(isValidUtf8(text) && textOfOneLine(text) == text, "the text is a line of UTF-8");
}

/// By the written form: a list that holds "not a number" does not equal itself.
void checkRoundTrip(const PropertyList& list) {
  const XmlPropertyLists lists;
  const auto xml = lists.xml(list);
  require(static_cast<bool>(xml), "what was read can be written");
  const auto back = lists.parse(*xml);
  require(static_cast<bool>(back), "what was written can be read");
  const auto again = lists.xml(*back);
  require(again && *again == *xml, "what is read again is the same");
}

}  // namespace

void tryInput(std::string_view input) {
  const auto list = XmlPropertyLists().parse(input);
  if (!list) return checkComplaint(list.errorText());
  checkTexts(*list);
  checkRoundTrip(*list);
  const auto count = countValues(*list);
  require(static_cast<bool>(readXmlPropertyList(input, count)), "values up to the limit are read");
  require(!readXmlPropertyList(input, count - 1), "values above the limit are refused");
}

}  // namespace quillmont::testing
