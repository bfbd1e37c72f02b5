#include "platform/PropertyList.h"

#include <cmath>

namespace quillmont {
namespace {

/// 2^63 and 2^64: the first values that the integer types no longer hold.
constexpr double kPast63Bits = 9223372036854775808.0;
constexpr double kPast64Bits = 18446744073709551616.0;

template <class Integer>
std::optional<double> exactReal(Integer value, double firstPast) {
  const auto real = static_cast<double>(value);
  if (real >= firstPast || static_cast<Integer>(real) != value) return std::nullopt;
  return real;
}

}  // namespace

std::optional<double> PropertyList::number() const {
  if (const auto* real = as<double>()) return *real;
  if (const auto* integer = as<std::int64_t>()) return exactReal(*integer, kPast63Bits);
  if (const auto* integer = as<std::uint64_t>()) return exactReal(*integer, kPast64Bits);
  return std::nullopt;
}

const PropertyList* PropertyList::find(std::string_view key) const {
  const auto* entries = dictionary();
  if (!entries) return nullptr;
  for (auto entry = entries->rbegin(); entry != entries->rend(); ++entry) {
    if (entry->first == key) return &entry->second;
  }
  return nullptr;
}

std::optional<std::vector<std::string>> PropertyList::stringArray() const {
  const auto* elements = array();
  if (!elements) return std::nullopt;
  std::vector<std::string> strings;
  strings.reserve(elements->size());
  for (const auto& element : *elements) {
    const auto* text = element.string();
    if (!text) return std::nullopt;
    strings.push_back(*text);
  }
  return strings;
}

}  // namespace quillmont
