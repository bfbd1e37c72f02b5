#include "platform/macos/self_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> missing(const std::vector<SystemInterface>& interfaces) {
  return missingInterfaces(interfaces);
}

TEST(SelfCheck, FindsWhatThereIs) {
  EXPECT_THAT(missing({{"NSString", "+stringWithUTF8String: -length -hasPrefix:"},
                       {"NSMutableArray", "-addObject: -count"}}),
              IsEmpty());
}

TEST(SelfCheck, NamesAClassThatIsMissingOnce) {
  EXPECT_THAT(missing({{"NSNoSuchClass", "-one -two"}}), ElementsAre("NSNoSuchClass"));
}

TEST(SelfCheck, NamesEveryMethodThatIsMissing) {
  EXPECT_THAT(missing({{"NSString", "-length -lenght +hasPrefix:"}}),
              ElementsAre("-[NSString lenght]", "+[NSString hasPrefix:]"));
}

TEST(SelfCheck, KnowsWhatTheHostUses) {
  EXPECT_GT(usedInterfaces().size(), 20U);
  for (const auto& interface : usedInterfaces()) {
    EXPECT_EQ(std::string_view(interface.className).substr(0, 2), "NS");
  }
}

class Lines : public Log {
 public:
  void write(std::string_view line) override { lines.emplace_back(line); }
  std::vector<std::string> lines;
};

TEST(SelfCheck, LogsALineForEachAndOneToClose) {
  Lines log;
  reportSelfCheck(log);
  const auto count = missingInterfaces(usedInterfaces()).size();
  ASSERT_EQ(log.lines.size(), count + 1);
  EXPECT_EQ(log.lines.back(), "self-check: " + std::to_string(count) + " missing");
}

}  // namespace
}  // namespace quillmont
