#include "platform/macos/FoundationPropertyLists.h"

#import <Foundation/Foundation.h>

#include "platform/macos/property_list_objects.h"
#include "platform/macos/strings.h"
#include "tests/support/PropertyListContract.h"

namespace quillmont {
namespace {

const FoundationPropertyLists kLists;

/// Every kind there is, its keys in order.
PropertyList everyKind() {
  return PropertyListDictionary{
      {"bytes", PropertyListData{std::string("\0\1\xFF", 3)}},
      {"count", std::int64_t{-3}},
      {"list", PropertyListArray{"one", true, std::int64_t{1}, 1.0, PropertyListArray()}},
      {"off", false},
      {"on", true},
      {"text", "\u78c1\u76d8 \U0001F4BF"},
      {"then", PropertyListDate{"2024-01-02T03:04:05Z"}},
      {"time", 900.0}};
}

std::string binary(const PropertyList& list) {
  @autoreleasepool {
    NSData* const data =
        [NSPropertyListSerialization dataWithPropertyList:*objectOf(list)
                                                   format:NSPropertyListBinaryFormat_v1_0
                                                  options:0
                                                    error:nullptr];
    return {static_cast<const char*>([data bytes]), [data length]};
  }
}

TEST(FoundationPropertyLists, ReadsTheBinaryEncoding) {
  const auto bytes = binary(everyKind());
  ASSERT_TRUE(bytes.starts_with("bplist00"));
  const auto list = kLists.parse(bytes);
  ASSERT_TRUE(list) << list.errorText();
  ASSERT_TRUE(list->dictionary());
  const auto expected = everyKind();
  for (const auto& [key, value] : *expected.dictionary()) {
    ASSERT_TRUE(list->find(key)) << key;
    EXPECT_EQ(*list->find(key), value) << key;
  }
  EXPECT_EQ(*list, expected);
}

TEST(FoundationPropertyLists, ReadsTheOldStyleAsTextsAndBytes) {
  const auto list = kLists.parse("{ a = b; list = ( one, \"two words\" ); bytes = <0102ff>; }");
  ASSERT_TRUE(list) << list.errorText();
  EXPECT_EQ(*list,
            PropertyList(PropertyListDictionary{{"a", "b"},
                                                {"bytes", PropertyListData{"\1\2\xFF"}},
                                                {"list", PropertyListArray{"one", "two words"}}}));
}

TEST(FoundationPropertyLists, NoTruncationOfABinaryListIsTakenForAList) {
  const auto good = binary(everyKind());
  for (std::size_t size = 0; size < good.size(); ++size) {
    const auto list = kLists.parse(good.substr(0, size));
    // Its first letters alone are a text of the old style.
    EXPECT_FALSE(list && !list->string()) << size;
  }
}

TEST(FoundationPropertyLists, ADictionaryComesInTheOrderOfItsKeys) {
  const auto list = kLists.parse(testing::plistDocument(
      "<dict><key>b</key><true/><key>\u78c1</key><true/><key>a</key><true/></dict>"));
  ASSERT_TRUE(list);
  EXPECT_EQ(*list,
            PropertyList(PropertyListDictionary{{"a", true}, {"b", true}, {"\u78c1", true}}));
}

TEST(FoundationPropertyLists, ADateThatIsNoneIsNotWritten) {
  EXPECT_EQ(kLists.xml(PropertyListDate{"tomorrow"}).errorText(), "a date that is none");
}

TEST(FoundationPropertyLists, TooManyBytesAreRefused) {
  EXPECT_EQ(kLists.parse(std::string((64u << 20) + 1, ' ')).errorText(),
            "a property list of too many bytes");
}

TEST(PropertyListObjects, BooleansAndNumbersOfTheSameValueStayApart) {
  @autoreleasepool {
    EXPECT_EQ(*propertyListOf([NSNumber numberWithBool:YES]), PropertyList(true));
    EXPECT_EQ(*propertyListOf([NSNumber numberWithBool:NO]), PropertyList(false));
    EXPECT_EQ(*propertyListOf([NSNumber numberWithInt:1]), PropertyList(std::int64_t{1}));
    EXPECT_EQ(*propertyListOf([NSNumber numberWithChar:1]), PropertyList(std::int64_t{1}));
    EXPECT_EQ(*propertyListOf([NSNumber numberWithInt:0]), PropertyList(std::int64_t{0}));
    EXPECT_EQ(*propertyListOf([NSNumber numberWithDouble:1]), PropertyList(1.0));
    EXPECT_EQ(*propertyListOf([NSNumber numberWithFloat:0.5F]), PropertyList(0.5));
    EXPECT_EQ(*propertyListOf([NSNumber numberWithUnsignedLongLong:1ULL << 63]),
              PropertyList(std::uint64_t{1} << 63));
    EXPECT_EQ(*propertyListOf([NSNumber numberWithUnsignedLongLong:5]),
              PropertyList(std::int64_t{5}));
  }
}

TEST(PropertyListObjects, AnObjectThatNoListHoldsIsAnErrorHoweverDeepItLies) {
  @autoreleasepool {
    NSObject* const object = [[[NSObject alloc] init] autorelease];
    const auto why = "an object that no property list holds";
    EXPECT_EQ(propertyListOf(object).errorText(), why);
    EXPECT_EQ(propertyListOf(nil).errorText(), why);
    EXPECT_EQ(propertyListOf(@[ @"a", @[ object ] ]).errorText(), why);
    EXPECT_EQ(propertyListOf(@{@"a" : object}).errorText(), why);
    EXPECT_EQ(propertyListOf(@{@(1) : @"a"}).errorText(), "a key that is no text");
  }
}

TEST(PropertyListObjects, ADateBeyondTheCalendarIsAnError) {
  @autoreleasepool {
    EXPECT_EQ(propertyListOf([NSDate dateWithTimeIntervalSince1970:1e15]).errorText(),
              "a date beyond the calendar");
  }
}

TEST(PropertyListObjects, OfAKeyThatStandsTwiceTheLastOneCounts) {
  @autoreleasepool {
    const auto object = objectOf(PropertyListDictionary{{"a", "first"}, {"a", "last"}});
    ASSERT_TRUE(object);
    EXPECT_EQ(utf8String([static_cast<NSDictionary*>(*object) objectForKey:@"a"]), "last");
  }
}

}  // namespace

namespace testing {
INSTANTIATE_TYPED_TEST_SUITE_P(Foundation, PropertyListContract, FoundationPropertyLists);
}  // namespace testing

}  // namespace quillmont
