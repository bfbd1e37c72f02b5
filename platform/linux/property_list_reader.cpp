#include "platform/linux/property_list_reader.h"

#include <expat.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/linux/base64.h"
#include "platform/linux/property_list_numbers.h"
#include "platform/posix/property_list_limits.h"

namespace quillmont {
namespace {

/// Expat may copy what it is fed: a large list goes in by pieces.
constexpr std::size_t kChunk = 1u << 20;

enum class Element { unknown, plist, array, dict, key, string, integer, real, yes, no, data, date };

Element elementNamed(const char* name) {
  const auto is = [name](const char* other) { return std::strcmp(name, other) == 0; };
  switch (name[0]) {
    case 'k':
      return is("key") ? Element::key : Element::unknown;
    case 's':
      return is("string") ? Element::string : Element::unknown;
    case 'i':
      return is("integer") ? Element::integer : Element::unknown;
    case 't':
      return is("true") ? Element::yes : Element::unknown;
    case 'f':
      return is("false") ? Element::no : Element::unknown;
    case 'd':
      if (is("dict")) return Element::dict;
      if (is("data")) return Element::data;
      return is("date") ? Element::date : Element::unknown;
    case 'a':
      return is("array") ? Element::array : Element::unknown;
    case 'r':
      return is("real") ? Element::real : Element::unknown;
    case 'p':
      return is("plist") ? Element::plist : Element::unknown;
    default:
      return Element::unknown;
  }
}

bool isContainer(Element element) {
  return element == Element::plist || element == Element::array || element == Element::dict;
}

bool isBlank(const char* text, std::size_t length) {
  return std::all_of(text, text + length,
                     [](char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; });
}

/// Builds the value while Expat walks through the text. Nothing recurses. The values of all open
/// containers lie on one stack, from which each container takes its own when it closes: one
/// allocation of the right size, and every value moves once.
class Reader {
 public:
  explicit Reader(std::size_t maxValues)
      : parser_(XML_ParserCreate(nullptr)), maxValues_(maxValues) {
    if (!parser_) return;
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(
        parser_.get(), [](void* self, const char* name, const char**) { of(self).start(name); },
        [](void* self, const char*) { of(self).end(); });
    XML_SetCharacterDataHandler(parser_.get(), [](void* self, const char* text, int length) {
      of(self).characters(text, static_cast<std::size_t>(length));
    });
    // Ends every attack by expansion, and every reach for other files, before it begins.
    XML_SetEntityDeclHandler(
        parser_.get(), [](void* self, const char*, int, const char*, int, const char*, const char*,
                          const char*, const char*) { of(self).fail("an entity is declared"); });
    XML_SetSkippedEntityHandler(parser_.get(), [](void* self, const char* name, int) {
      of(self).fail("undeclared entity " + std::string(name));
    });
  }

  Result<PropertyList> read(std::string_view bytes) {
    if (!parser_) return Error{"out of memory"};
    do {
      const auto chunk = bytes.substr(0, kChunk);
      bytes.remove_prefix(chunk.size());
      const auto status = XML_Parse(parser_.get(), chunk.data(), static_cast<int>(chunk.size()),
                                    bytes.empty() ? XML_TRUE : XML_FALSE);
      if (status != XML_STATUS_OK && !error_) {
        note(XML_ErrorString(XML_GetErrorCode(parser_.get())));
      }
    } while (!bytes.empty() && !error_);
    if (error_) return std::move(*error_);
    return std::move(values_.front().second);
  }

 private:
  struct Container {
    Element element;
    std::size_t firstValue;  ///< where its values begin on the stack
    bool hasKey = false;     ///< a key waits for its value
  };

  static Reader& of(void* self) { return *static_cast<Reader*>(self); }

  void note(const std::string& what) {
    error_ = Error{"line " + std::to_string(XML_GetCurrentLineNumber(parser_.get())) + ", column " +
                   std::to_string(XML_GetCurrentColumnNumber(parser_.get()) + 1) + ": " + what};
  }

  /// Only the first failure counts. Expat still calls handlers after it was stopped.
  void fail(const std::string& what) {
    if (error_) return;
    note(what);
    XML_StopParser(parser_.get(), XML_FALSE);
  }

  void start(const char* name) {
    if (error_) return;
    const auto element = elementNamed(name);
    if (element == Element::unknown) return fail("unknown element <" + std::string(name) + ">");
    if (const char* wrong = misplaced(element)) return fail(wrong);
    if (element != Element::key && element != Element::plist && ++valueCount_ > maxValues_) {
      return fail("too many values");
    }
    if (isContainer(element)) {
      // The root element is no level of its own.
      if (open_.size() > kMaxPropertyListDepth) return fail("nested too deeply");
      open_.push_back({element, values_.size()});
    } else {
      scalar_ = element;
      text_.clear();
    }
  }

  /// Why `element` may not begin here; null if it may.
  const char* misplaced(Element element) const {
    if (scalar_ != Element::unknown) return "an element inside of text";
    if (open_.empty()) return element == Element::plist ? nullptr : "the root is no <plist>";
    if (element == Element::plist) return "a <plist> inside of another";
    const auto& container = open_.back();
    const bool inDictionary = container.element == Element::dict;
    if (element == Element::key) {
      if (!inDictionary) return "a key outside of a dictionary";
      return container.hasKey ? "a key without a value" : nullptr;
    }
    if (inDictionary && !container.hasKey) return "a value without a key";
    if (container.element == Element::plist && !values_.empty()) return "more than one value";
    return nullptr;
  }

  void characters(const char* text, std::size_t length) {
    if (error_) return;
    if (scalar_ != Element::unknown) {
      text_.append(text, length);
    } else if (!isBlank(text, length)) {
      fail("text outside of a value");
    }
  }

  void end() {
    if (error_) return;
    if (scalar_ != Element::unknown) {
      endScalar(std::exchange(scalar_, Element::unknown));
    } else {
      endContainer();
    }
  }

  void endContainer() {
    const auto container = open_.back();
    if (container.hasKey) return fail("a key without a value");
    if (container.element == Element::plist) {
      if (values_.empty()) fail("no value");
      return;
    }
    const auto first = values_.begin() + static_cast<std::ptrdiff_t>(container.firstValue);
    if (container.element == Element::dict) {
      closeWith(
          PropertyListDictionary(std::move_iterator(first), std::move_iterator(values_.end())));
    } else {
      PropertyListArray array;
      array.reserve(static_cast<std::size_t>(values_.end() - first));
      for (auto entry = first; entry != values_.end(); ++entry) {
        array.push_back(std::move(entry->second));
      }
      closeWith(std::move(array));
    }
  }

  void closeWith(PropertyList value) {
    values_.erase(values_.begin() + static_cast<std::ptrdiff_t>(open_.back().firstValue),
                  values_.end());
    open_.pop_back();
    add(std::move(value));
  }

  /// In a dictionary the stack's last entry may be a key that waits for its value.
  void add(PropertyList value) {
    auto& container = open_.back();
    if (container.element == Element::dict) {
      values_.back().second = std::move(value);
      container.hasKey = false;
    } else {
      values_.emplace_back(std::string(), std::move(value));
    }
  }

  void endScalar(Element element) {
    switch (element) {
      case Element::key:
        values_.emplace_back(text_, false);
        open_.back().hasKey = true;
        return;
      case Element::string:
        return add(text_);
      case Element::integer:
        return addIf(integerOf(text_), "not an integer of 64 bits");
      case Element::real:
        return addIf(realOf(text_), "not a real number");
      case Element::data:
        return addIf(bytesOfBase64(text_), "not base64");
      case Element::date:
        return add(PropertyListDate{text_});
      default:
        if (!isBlank(text_.data(), text_.size())) return fail("text inside of a boolean");
        return add(element == Element::yes);
    }
  }

  template <class T>
  void addIf(std::optional<T> value, const char* otherwise) {
    if (!value) return fail(otherwise);
    if constexpr (std::is_same_v<T, PropertyList>) {
      add(std::move(*value));
    } else {
      add(PropertyListData{std::move(*value)});
    }
  }

  struct Free {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, Free> parser_;
  const std::size_t maxValues_;
  std::vector<Container> open_;
  PropertyListDictionary values_;      ///< keys are empty but in dictionaries
  Element scalar_ = Element::unknown;  ///< the one whose text is being read; unknown for none
  std::string text_;
  std::size_t valueCount_ = 0;
  std::optional<Error> error_;
};

}  // namespace

Result<PropertyList> readXmlPropertyList(std::string_view bytes, std::size_t maxValues) {
  return Reader(maxValues).read(bytes);
}

}  // namespace quillmont
