// Points in time as property lists spell them: "2024-01-02T03:04:05Z".
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillmont {

/// `seconds` since 1970, without their fraction; nothing outside of the years 0 to 9999.
std::optional<std::string> isoDate(double seconds);

/// The seconds since 1970; nothing for any other text and for days that the calendar does not have.
std::optional<double> secondsOfIsoDate(std::string_view text);

}  // namespace quillmont
