#include "platform/linux/XmlPropertyLists.h"

#include <optional>
#include <type_traits>
#include <utility>

#include "platform/linux/base64.h"
#include "platform/linux/property_list_numbers.h"
#include "platform/linux/property_list_reader.h"
#include "platform/posix/property_list_limits.h"
#include "platform/posix/xml_text.h"

namespace quillmont {
namespace {

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kFoot = "</plist>\n";

/// How a character is written that cannot stand for itself; null for all others.
const char* referenceFor(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '\r':  // a reader would take a bare one for the end of a line
      return "&#13;";
    default:
      return nullptr;
  }
}

/// Writes values by their types, each on lines of its own. Recursion is bounded by the depth that
/// the reader accepts. The first failure is kept.
class Writer {
 public:
  Result<std::string> write(const PropertyList& list) {
    text_ = kHead;
    add(list);
    text_ += kFoot;
    if (!failure_ && text_.size() > kMaxPropertyListBytes) failure_ = "too many bytes";
    if (failure_) return Error{failure_};
    return std::move(text_);
  }

 private:
  void add(const PropertyList& list) {
    if (++valueCount_ > kMaxPropertyListValues) failure_ = "too many values";
    if (failure_) return;
    std::visit([this](const auto& value) { addValue(value); }, list.value());
  }

  void addValue(bool value) { line(value ? "<true/>" : "<false/>"); }
  void addValue(std::int64_t value) { scalar("integer", std::to_string(value)); }
  void addValue(std::uint64_t value) { scalar("integer", std::to_string(value)); }
  void addValue(double value) { scalar("real", realText(value)); }
  void addValue(const std::string& value) { scalar("string", value); }
  void addValue(const PropertyListData& value) { scalar("data", base64(value.bytes)); }
  void addValue(const PropertyListDate& value) { scalar("date", value.iso8601); }

  void addValue(const PropertyListArray& elements) {
    container("array", elements, [this](const PropertyList& element) { add(element); });
  }

  void addValue(const PropertyListDictionary& entries) {
    container("dict", entries, [this](const auto& entry) {
      scalar("key", entry.first);
      add(entry.second);
    });
  }

  template <class Values, class AddOne>
  void container(const std::string& name, const Values& values, AddOne addOne) {
    if (++depth_ > kMaxPropertyListDepth) failure_ = "nested too deeply";
    if (values.empty()) {
      indent(depth_ - 1);
      text_.append("<").append(name).append("/>\n");
    } else {
      indent(depth_ - 1);
      text_.append("<").append(name).append(">\n");
      for (const auto& value : values) {
        if (failure_) break;
        addOne(value);
      }
      indent(depth_ - 1);
      text_.append("</").append(name).append(">\n");
    }
    --depth_;
  }

  void indent(std::size_t depth) { text_.append(depth, '\t'); }

  void line(std::string_view element) {
    indent(depth_);
    text_.append(element).append("\n");
  }

  void scalar(std::string_view name, std::string_view value) {
    indent(depth_);
    text_.append("<").append(name).append(">");
    escape(value);
    text_.append("</").append(name).append(">\n");
  }

  void escape(std::string_view value) {
    std::size_t plain = 0;  // bytes at the front that go as they are
    while (plain < value.size()) {
      const auto length = xmlCharacterLength(value.substr(plain));
      if (length == 0) {
        failure_ = "a text holds bytes that XML cannot carry";
        return;
      }
      const char* reference = referenceFor(value[plain]);
      if (!reference) {
        plain += length;
        continue;
      }
      text_.append(value.substr(0, plain)).append(reference);
      value.remove_prefix(plain + length);
      plain = 0;
    }
    text_.append(value);
  }

  std::string text_;
  std::size_t depth_ = 0;
  std::size_t valueCount_ = 0;
  const char* failure_ = nullptr;
};

/// Why `bytes` are no XML at all; nothing if they may be.
std::optional<Error> foreignEncoding(std::string_view bytes) {
  if (bytes.starts_with("bplist")) {
    return Error{"this is a binary property list; only the XML form can be read"};
  }
  const auto first = bytes.find_first_not_of(" \t\r\n");
  if (first != std::string_view::npos &&
      std::string_view("({\"/").find(bytes[first]) != std::string_view::npos) {
    return Error{"this is an old-style property list; only the XML form can be read"};
  }
  return std::nullopt;
}

}  // namespace

Result<PropertyList> XmlPropertyLists::parse(std::string_view bytes) const {
  if (bytes.size() > kMaxPropertyListBytes) return Error{"a property list of too many bytes"};
  if (auto error = foreignEncoding(bytes)) return std::move(*error);
  return readXmlPropertyList(bytes);
}

Result<std::string> XmlPropertyLists::xml(const PropertyList& list) const {
  return Writer().write(list);
}

}  // namespace quillmont
