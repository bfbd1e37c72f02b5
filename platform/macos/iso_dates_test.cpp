#include "platform/macos/iso_dates.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillmont {
namespace {

TEST(IsoDates, SecondsAndTextsAreTheSamePointsInTime) {
  const std::pair<double, const char*> cases[] = {
      {0, "1970-01-01T00:00:00Z"},
      {1704164645, "2024-01-02T03:04:05Z"},
      {951782399, "2000-02-28T23:59:59Z"},
      {951825600, "2000-02-29T12:00:00Z"},
      {-1, "1969-12-31T23:59:59Z"},
      {-62167219200, "0000-01-01T00:00:00Z"},
      {253402300799, "9999-12-31T23:59:59Z"},
  };
  for (const auto& [seconds, text] : cases) {
    EXPECT_EQ(isoDate(seconds), text);
    EXPECT_EQ(secondsOfIsoDate(text), seconds);
  }
}

TEST(IsoDates, FractionsOfASecondAreLeftOut) {
  EXPECT_EQ(isoDate(0.999), "1970-01-01T00:00:00Z");
  EXPECT_EQ(isoDate(-0.001), "1969-12-31T23:59:59Z");
}

TEST(IsoDates, TimesBeyondFourDigitYearsHaveNoText) {
  using Limits = std::numeric_limits<double>;
  for (const double seconds : {253402300800.0, -62167219201.0, 1e300, Limits::infinity(),
                               -Limits::infinity(), Limits::quiet_NaN()}) {
    EXPECT_EQ(isoDate(seconds), std::nullopt) << seconds;
  }
}

TEST(IsoDates, OtherTextsAreNoDates) {
  for (const char* text :
       {"", "2024-01-02", "2024-01-02T03:04:05", "2024-01-02T03:04:05Zx", "2024-01-02 03:04:05Z",
        "2024-02-30T00:00:00Z", "2023-02-29T00:00:00Z", "2024-13-01T00:00:00Z",
        "2024-00-01T00:00:00Z", "2024-01-02T24:00:00Z", "2024-01-02T00:60:00Z",
        "2024-01-02T00:00:60Z", "+024-01-02T03:04:05Z", "2024-01-02T03:04: 5Z"}) {
    EXPECT_EQ(secondsOfIsoDate(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace quillmont
