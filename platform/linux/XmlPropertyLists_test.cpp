#include "platform/linux/XmlPropertyLists.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/PropertyListContract.h"

namespace quillmont {
namespace {

using ::testing::HasSubstr;

const XmlPropertyLists kLists;

TEST(XmlPropertyLists, ListOfSeveralChunksIsReadWhole) {
  PropertyListArray strings;
  for (int i = 0; i < 60'000; ++i) strings.emplace_back("\u78c1\u76d8 number " + std::to_string(i));
  const PropertyList list(std::move(strings));
  const auto xml = kLists.xml(list);
  ASSERT_TRUE(xml);
  ASSERT_GT(xml->size(), 2u << 20);
  const auto back = kLists.parse(*xml);
  ASSERT_TRUE(back);
  EXPECT_EQ(*back, list);
}

TEST(XmlPropertyLists, WritesTheUsualForm) {
  const PropertyListDictionary dictionary = {
      {"on", true},
      {"off", false},
      {"count", std::int64_t{-3}},
      {"time", 900.0},
      {"a<b>&\"c\"", "x<y>&z\r\n"},
      {"list", PropertyListArray{"one", PropertyListArray()}},
      {"nothing", PropertyListDictionary()},
      {"bytes", PropertyListData{std::string("\0\1", 2)}},
      {"then", PropertyListDate{"2024-01-02T03:04:05Z"}}};
  EXPECT_EQ(*kLists.xml(dictionary),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
            "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
            "<plist version=\"1.0\">\n"
            "<dict>\n"
            "\t<key>on</key>\n\t<true/>\n"
            "\t<key>off</key>\n\t<false/>\n"
            "\t<key>count</key>\n\t<integer>-3</integer>\n"
            "\t<key>time</key>\n\t<real>900</real>\n"
            "\t<key>a&lt;b&gt;&amp;\"c\"</key>\n\t<string>x&lt;y&gt;&amp;z&#13;\n</string>\n"
            "\t<key>list</key>\n\t<array>\n\t\t<string>one</string>\n\t\t<array/>\n\t</array>\n"
            "\t<key>nothing</key>\n\t<dict/>\n"
            "\t<key>bytes</key>\n\t<data>AAE=</data>\n"
            "\t<key>then</key>\n\t<date>2024-01-02T03:04:05Z</date>\n"
            "</dict>\n"
            "</plist>\n");
}

TEST(XmlPropertyLists, WhatIsWrittenReadsBackTheSame) {
  PropertyListArray values = {
      true,
      false,
      std::numeric_limits<std::int64_t>::min(),
      std::numeric_limits<std::uint64_t>::max(),
      0.1,
      -0.0,
      1e300,
      5e-324,
      std::numeric_limits<double>::infinity(),
      -std::numeric_limits<double>::infinity(),
      "",
      " \t\n\r\r\n ",
      "]]>",
      "<!-- & -->",
      "\u78c1\u76d8\U0001F4BF",
      "\u0085\u2028\uFFFD",
      PropertyListDate{" not a date & "},
      PropertyListData{},
      PropertyListArray{PropertyListArray{PropertyListDictionary{{"", ""}, {"", "again"}}}}};
  for (std::size_t size = 0; size < 9; ++size) {
    values.emplace_back(PropertyListData{std::string("\xFF\0\x80zz\r\n\xFE", 8).substr(0, size)});
  }
  values.push_back(testing::nestedLists(255));
  const PropertyList list(std::move(values));
  const auto xml = kLists.xml(list);
  ASSERT_TRUE(xml) << xml.errorText();
  const auto back = kLists.parse(*xml);
  ASSERT_TRUE(back) << back.errorText();
  EXPECT_EQ(*back, list);
  EXPECT_TRUE(std::signbit(*back->array()->at(5).as<double>()));
}

TEST(XmlPropertyLists, NotANumberIsWrittenAndReadBack) {
  const auto xml = kLists.xml(-std::numeric_limits<double>::quiet_NaN());
  ASSERT_TRUE(xml);
  EXPECT_THAT(*xml, HasSubstr("<real>nan</real>"));
  EXPECT_TRUE(std::isnan(*kLists.parse(*xml)->as<double>()));
}

TEST(XmlPropertyLists, TextThatXmlCannotCarryIsRefused) {
  for (const std::string& text :
       {std::string("a\0b", 3), std::string("\x01"), std::string("\x1B"),
        std::string("\xEF\xBF\xBE"), std::string("\xEF\xBF\xBF"), std::string("\xFF"),
        std::string("\xC3"), std::string("\xC0\x80"), std::string("\xC1\xBF"),
        std::string("\xE0\x80\x80"), std::string("\xED\xA0\x80"), std::string("\xF0\x80\x80\x80"),
        std::string("\xF4\x90\x80\x80"), std::string("\x80"), std::string("\xE7\xA3")}) {
    const auto why = "a text holds bytes that XML cannot carry";
    EXPECT_EQ(kLists.xml(text).errorText(), why);
    EXPECT_EQ(kLists.xml(PropertyListDictionary{{text, true}}).errorText(), why);
    EXPECT_EQ(kLists.xml(PropertyListDate{text}).errorText(), why);
  }
}

TEST(XmlPropertyLists, WhatCouldNotBeReadAgainIsNotWritten) {
  EXPECT_TRUE(kLists.xml(testing::nestedLists(256)));
  EXPECT_EQ(kLists.xml(testing::nestedLists(257)).errorText(), "nested too deeply");
  // Each takes five bytes in the file.
  const std::string returns((64u << 20) / 5 + 1, '\r');
  EXPECT_EQ(kLists.xml(PropertyList(returns)).errorText(), "too many bytes");
}

}  // namespace

namespace testing {
INSTANTIATE_TYPED_TEST_SUITE_P(Xml, PropertyListContract, XmlPropertyLists);
}  // namespace testing

}  // namespace quillmont
