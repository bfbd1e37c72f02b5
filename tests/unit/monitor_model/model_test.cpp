// The monitor agrees with a model of it, whatever happens and in whatever order.
//
// QUILLMONT_HISTORIES and QUILLMONT_FIRST_SEED say how many histories are tried, and from which.

#include <gmock/gmock.h>

#include <cstdlib>
#include <iostream>
#include <string>

#include "tests/unit/monitor_model/comparison.h"

namespace quillmont {
namespace {

using testing::differenceIn;
using testing::History;
using testing::Kind;
using testing::randomHistory;
using testing::Tally;

unsigned environmentNumber(const char* name, unsigned otherwise) {
  const char* const text = std::getenv(name);
  return text ? static_cast<unsigned>(std::stoul(text)) : otherwise;
}

TEST(MonitorModel, RandomHistoriesShowNoDifference) {
  const auto count = environmentNumber("QUILLMONT_HISTORIES", 2000);
  const auto first = environmentNumber("QUILLMONT_FIRST_SEED", 1);
  for (unsigned at = 0; at < count; ++at) {
    const auto seed = first + at;
    const auto history = randomHistory(seed);
    if (!differenceIn(history)) continue;
    FAIL() << "seed " << seed << ", after " << at << " histories without a difference; shortened:\n"
           << testing::report(testing::shortened(history));
  }
  std::cout << count << " histories from seed " << first << " on\n";
}

// Agreement is worth something only if the histories get everywhere.
TEST(MonitorModel, RandomHistoriesReachEveryOutcome) {
  Tally tally;
  for (unsigned seed = 1; seed <= 300; ++seed) {
    EXPECT_EQ(differenceIn(randomHistory(seed), &tally), std::nullopt) << "seed " << seed;
  }
  for (const char* outcome :
       {"published", "log Successfully", "log Warning:", "log Failed", "log Exception", "log Error",
        "log Quillmont", "run /usr/bin/osascript", "remove the", "terminate", "sleep 500000",
        "sleep 100000"}) {
    EXPECT_GE(tally[outcome], 10) << outcome;
  }
}

TEST(MonitorModel, TheSameSeedIsTheSameHistory) {
  const auto text = [](const History& history) { return testing::report(history); };
  EXPECT_EQ(text(randomHistory(7)), text(randomHistory(7)));
  EXPECT_NE(text(randomHistory(7)), text(randomHistory(8)));
}

}  // namespace
}  // namespace quillmont
