#include "platform/macos/iso_dates.h"

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>

namespace quillmont {
namespace {

using namespace std::chrono;

constexpr sys_days kFirstDay = year(0) / January / 1;
constexpr sys_days kDayPastLast = year(10000) / January / 1;
constexpr std::string_view kForm = "0000-00-00T00:00:00Z";

/// Whether `text` has digits and signs where `kForm` has them.
bool hasForm(std::string_view text) {
  if (text.size() != kForm.size()) return false;
  for (std::size_t at = 0; at < kForm.size(); ++at) {
    const bool digit = text[at] >= '0' && text[at] <= '9';
    if (kForm[at] == '0' ? !digit : text[at] != kForm[at]) return false;
  }
  return true;
}

int number(std::string_view text, std::size_t at, std::size_t digits) {
  int result = 0;
  for (const char digit : text.substr(at, digits)) result = result * 10 + (digit - '0');
  return result;
}

}  // namespace

std::optional<std::string> isoDate(double sinceEpoch) {
  const double first = static_cast<double>(sys_seconds(kFirstDay).time_since_epoch().count());
  const double past = static_cast<double>(sys_seconds(kDayPastLast).time_since_epoch().count());
  if (!(sinceEpoch >= first && sinceEpoch < past)) return std::nullopt;
  const sys_seconds time{seconds(static_cast<long long>(std::floor(sinceEpoch)))};
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text;
}

std::optional<double> secondsOfIsoDate(std::string_view text) {
  if (!hasForm(text)) return std::nullopt;
  const year_month_day date(year(number(text, 0, 4)),
                            month(static_cast<unsigned>(number(text, 5, 2))),
                            day(static_cast<unsigned>(number(text, 8, 2))));
  const int hour = number(text, 11, 2), minute = number(text, 14, 2), second = number(text, 17, 2);
  if (!date.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
  const auto time = sys_days(date) + hours(hour) + minutes(minute) + seconds(second);
  return static_cast<double>(time.time_since_epoch().count());
}

}  // namespace quillmont
