#include "platform/PropertyList.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillmont {
namespace {

TEST(PropertyList, ValueKnowsItsExactType) {
  EXPECT_NE(PropertyList(true), PropertyList(std::int64_t{1}));
  EXPECT_NE(PropertyList(std::int64_t{1}), PropertyList(1.0));
  EXPECT_NE(PropertyList("1"), PropertyList(1.0));
  EXPECT_EQ(PropertyList("text"), PropertyList(std::string("text")));
}

TEST(PropertyList, NumbersAreReadOnlyWhenTheyAreExact) {
  EXPECT_EQ(PropertyList(2.5).number(), 2.5);
  EXPECT_EQ(PropertyList(std::int64_t{-600}).number(), -600.0);
  EXPECT_EQ(PropertyList(std::numeric_limits<std::int64_t>::min()).number(),
            -9223372036854775808.0);
  EXPECT_EQ(PropertyList(std::uint64_t{1} << 63).number(), 9223372036854775808.0);
  EXPECT_EQ(PropertyList((std::int64_t{1} << 53) + 1).number(), std::nullopt);
  EXPECT_EQ(PropertyList(std::numeric_limits<std::int64_t>::max()).number(), std::nullopt);
  EXPECT_EQ(PropertyList(std::numeric_limits<std::uint64_t>::max()).number(), std::nullopt);
  EXPECT_EQ(PropertyList(true).number(), std::nullopt);
  EXPECT_EQ(PropertyList("600").number(), std::nullopt);
}

TEST(PropertyList, LastOfTwoEntriesOfOneKeyCounts) {
  const PropertyList list = PropertyListDictionary{{"a", "first"}, {"b", "x"}, {"a", "last"}};
  ASSERT_TRUE(list.find("a"));
  EXPECT_EQ(*list.find("a"), PropertyList("last"));
  EXPECT_EQ(list.find("c"), nullptr);
  EXPECT_EQ(PropertyList("a").find("a"), nullptr);
}

TEST(PropertyList, StringArrayHoldsStringsAlone) {
  EXPECT_EQ(PropertyList(PropertyListArray{"a", "b"}).stringArray(),
            (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(PropertyList(PropertyListArray{}).stringArray(), std::vector<std::string>());
  EXPECT_EQ(PropertyList(PropertyListArray{"a", true}).stringArray(), std::nullopt);
  EXPECT_EQ(PropertyList("a").stringArray(), std::nullopt);
}

}  // namespace
}  // namespace quillmont
