// Numbers as property lists spell them, whatever the locale.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/PropertyList.h"

namespace quillmont {

/// An integer, decimal or hexadecimal with 0x, of 64 bits: signed where it fits, else unsigned.
/// White space around it does not count. Nothing for any other text and for larger numbers.
std::optional<PropertyList> integerOf(std::string_view text);

/// A real, decimal, or "nan", "inf", "infinity" in any case with or without a sign. Nothing for any
/// other text and for numbers that no double comes near to.
std::optional<PropertyList> realOf(std::string_view text);

/// The shortest text from which realOf() makes the same value again.
std::string realText(double value);

}  // namespace quillmont
