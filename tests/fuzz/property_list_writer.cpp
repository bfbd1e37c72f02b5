// The writer of XML property lists, over lists of every make: names of images and volumes are bytes
// that anybody chose.

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

#include "platform/linux/XmlPropertyLists.h"
#include "platform/posix/xml_text.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

/// Makes a list out of bytes, one of which says what comes next.
class ListMaker {
 public:
  explicit ListMaker(std::string_view bytes) : bytes_(bytes) {}

  PropertyList make(int deepest = 300) {
    switch (take<std::uint8_t>() % (deepest > 0 ? 9 : 7)) {
      case 0:
        return take<std::uint8_t>() % 2 == 0;
      case 1:
        return take<std::int64_t>();
      case 2:
        return take<std::uint64_t>() | std::uint64_t{1} << 63;
      case 3:
        return take<double>();
      case 4:
        return text();
      case 5:
        return PropertyListData{std::string(piece())};
      case 6:
        return PropertyListDate{text()};
      case 7:
        return array(deepest - 1);
      default:
        return dictionary(deepest - 1);
    }
  }

  bool allCarried() const { return allCarried_; }
  bool tooDeep() const { return tooDeep_; }

 private:
  static constexpr int kFirstRefused = 300 - 256;

  template <class Number>
  Number take() {
    Number number{};
    const auto size = std::min(sizeof number, bytes_.size());
    std::memcpy(&number, bytes_.data(), size);
    bytes_.remove_prefix(size);
    return number;
  }

  std::string_view piece() {
    const auto size = std::min<std::size_t>(take<std::uint8_t>(), bytes_.size());
    const auto piece = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
    return piece;
  }

  std::string text() {
    const std::string text(piece());
    for (std::string_view rest = text; !rest.empty();) {
      const auto length = xmlCharacterLength(rest);
      allCarried_ = allCarried_ && length > 0;
      rest.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return text;
  }

  PropertyList array(int deepest) {
    tooDeep_ = tooDeep_ || deepest < kFirstRefused;
    PropertyListArray elements;
    for (int left = take<std::uint8_t>() % 16; left > 0; --left) elements.push_back(make(deepest));
    return elements;
  }

  PropertyList dictionary(int deepest) {
    tooDeep_ = tooDeep_ || deepest < kFirstRefused;
    PropertyListDictionary entries;
    for (int left = take<std::uint8_t>() % 16; left > 0 && !bytes_.empty(); --left) {
      auto key = text();
      entries.emplace_back(std::move(key), make(deepest));
    }
    return entries;
  }

  std::string_view bytes_;
  bool allCarried_ = true;
  bool tooDeep_ = false;
};

}  // namespace

void tryInput(std::string_view input) {
  ListMaker maker(input);
  const PropertyList list = maker.make();
  const XmlPropertyLists lists;
  const auto xml = lists.xml(list);
  require(static_cast<bool>(xml) == (maker.allCarried() && !maker.tooDeep()),
          "a list is refused for texts that XML cannot carry and for its depth alone");
  if (!xml) return;
  const auto back = lists.parse(*xml);
  require(static_cast<bool>(back), "what was written can be read");
  const auto again = lists.xml(*back);
  require(again && *again == *xml, "what is read again is the same");
}

}  // namespace quillmont::testing
