// What every host's property lists promise. A host's test names its coder, which has a default
// constructor:
//   INSTANTIATE_TYPED_TEST_SUITE_P(Name, PropertyListContract, Coder);
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "platform/PropertyList.h"

namespace quillmont::testing {

inline std::string plistDocument(const std::string& content) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">" +
         content + "</plist>\n";
}

inline PropertyList nestedLists(std::size_t depth) {
  PropertyList list{PropertyListArray()};
  for (std::size_t i = 1; i < depth; ++i) {
    PropertyListArray outer;
    outer.push_back(std::move(list));
    list = PropertyList(std::move(outer));
  }
  return list;
}

template <class Coder>
class PropertyListContract : public ::testing::Test {
 protected:
  /// The value of the list whose root element holds `content`; a text that starts with "refused"
  /// where there is none.
  PropertyList read(const std::string& content) const {
    const auto list = coder.parse(plistDocument(content));
    return list ? *list : PropertyList("refused: " + list.errorText());
  }

  PropertyList writtenAndRead(const PropertyList& list) const {
    const auto xml = coder.xml(list);
    if (!xml) return PropertyList("not written: " + xml.errorText());
    const auto back = coder.parse(*xml);
    return back ? *back : PropertyList("refused: " + back.errorText());
  }

  const Coder coder = {};
};

TYPED_TEST_SUITE_P(PropertyListContract);

TYPED_TEST_P(PropertyListContract, ReadsEveryKindAsItself) {
  EXPECT_EQ(this->read("<true/>"), PropertyList(true));
  EXPECT_EQ(this->read("<false/>"), PropertyList(false));
  EXPECT_EQ(this->read("<integer>1</integer>"), PropertyList(std::int64_t{1}));
  EXPECT_EQ(this->read("<integer>0</integer>"), PropertyList(std::int64_t{0}));
  EXPECT_EQ(this->read("<real>1</real>"), PropertyList(1.0));
  EXPECT_EQ(this->read("<real>900.5</real>"), PropertyList(900.5));
  EXPECT_EQ(this->read("<string>1</string>"), PropertyList("1"));
  EXPECT_EQ(this->read("<string></string>"), PropertyList(""));
  EXPECT_EQ(this->read("<data>AQID</data>"), PropertyList(PropertyListData{"\1\2\3"}));
  EXPECT_EQ(this->read("<date>2024-01-02T03:04:05Z</date>"),
            PropertyList(PropertyListDate{"2024-01-02T03:04:05Z"}));
  EXPECT_EQ(this->read("<array></array>"), PropertyList(PropertyListArray()));
  EXPECT_EQ(this->read("<dict></dict>"), PropertyList(PropertyListDictionary()));
}

TYPED_TEST_P(PropertyListContract, ReadsIntegersToTheEndOfTheirRange) {
  EXPECT_EQ(this->read("<integer>-5</integer>"), PropertyList(std::int64_t{-5}));
  EXPECT_EQ(this->read("<integer>9223372036854775807</integer>"),
            PropertyList(std::numeric_limits<std::int64_t>::max()));
  EXPECT_EQ(this->read("<integer>-9223372036854775808</integer>"),
            PropertyList(std::numeric_limits<std::int64_t>::min()));
}

TYPED_TEST_P(PropertyListContract, ReadsTheDiskImageToolsNesting) {
  const auto list = this->read(
      "<dict>\n\t<key>framework</key>\n\t<string>1</string>\n\t<key>images</key>\n\t<array>\n"
      "\t\t<dict>\n\t\t\t<key>image-path</key>\n\t\t\t<string>/a &amp; b.dmg</string>\n"
      "\t\t\t<key>system-entities</key>\n\t\t\t<array>\n\t\t\t\t<dict>\n"
      "\t\t\t\t\t<key>dev-entry</key>\n\t\t\t\t\t<string>/dev/disk4</string>\n"
      "\t\t\t\t</dict>\n\t\t\t\t<dict>\n\t\t\t\t</dict>\n\t\t\t</array>\n"
      "\t\t\t<key>writeable</key>\n\t\t\t<true/>\n\t\t</dict>\n\t</array>\n"
      "\t<key>revision</key>\n\t<string>2</string>\n</dict>\n");
  const PropertyListDictionary entity = {{"dev-entry", "/dev/disk4"}};
  const PropertyListDictionary image = {
      {"image-path", "/a & b.dmg"},
      {"system-entities", PropertyListArray{entity, PropertyListDictionary()}},
      {"writeable", true}};
  const PropertyListDictionary expected = {
      {"framework", "1"}, {"images", PropertyListArray{image}}, {"revision", "2"}};
  EXPECT_EQ(list, PropertyList(expected));
}

TYPED_TEST_P(PropertyListContract, StringsKeepTheirWhiteSpaceAndDecodeReferences) {
  EXPECT_EQ(this->read("<string> a\n\tb </string>"), PropertyList(" a\n\tb "));
  EXPECT_EQ(this->read("<string>&lt;\u78c1\u76d8&amp;&#x1F4BF;&gt;</string>"),
            PropertyList("<\u78c1\u76d8&\U0001F4BF>"));
}

TYPED_TEST_P(PropertyListContract, WhatIsNoPropertyListIsAnErrorWithAText) {
  const auto good = plistDocument("<dict><key>a</key><array><real>1</real></array></dict>");
  for (const std::string& bytes :
       {std::string(), std::string("\0\1\2", 3), std::string("<plist><bad/></plist>"),
        good.substr(0, good.size() / 2), good.substr(0, 60)}) {
    const auto list = this->coder.parse(bytes);
    ASSERT_FALSE(list) << bytes;
    EXPECT_FALSE(list.errorText().empty());
    EXPECT_EQ(list.errorText().find('\n'), std::string::npos) << list.errorText();
  }
}

TYPED_TEST_P(PropertyListContract, NoTruncationCrashes) {
  const auto good =
      plistDocument("<dict><key>a</key><array><real>1</real><data>AQID</data></array></dict>");
  for (std::size_t size = 0; size < good.rfind("</plist>"); ++size) {
    const auto list = this->coder.parse(good.substr(0, size));
    EXPECT_FALSE(list && list->find("a") && list->find("a")->array() &&
                 list->find("a")->array()->size() < 2)
        << "half a list after " << size << " bytes";
  }
}

TYPED_TEST_P(PropertyListContract, WritesTheHeadOfAMacsLists) {
  const auto xml = this->coder.xml(PropertyListDictionary{{"a", true}});
  ASSERT_TRUE(xml) << xml.errorText();
  EXPECT_TRUE(
      xml->starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                       "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                       "<plist version=\"1.0\">\n"))
      << *xml;
  EXPECT_TRUE(xml->ends_with("</plist>\n") || xml->ends_with("</plist>")) << *xml;
}

TYPED_TEST_P(PropertyListContract, WhatIsWrittenReadsBackTheSame) {
  PropertyListArray values = {
      true,
      false,
      std::int64_t{1},
      std::numeric_limits<std::int64_t>::min(),
      std::numeric_limits<std::int64_t>::max(),
      900.0,
      0.1,
      -1e300,
      "",
      " \t\n ",
      "]]>",
      "<!-- & -->",
      "\u78c1\u76d8",
      PropertyListDate{"2024-02-29T23:59:59Z"},
      PropertyListData{},
      PropertyListArray{PropertyListArray{PropertyListDictionary{{"", ""}, {"<&>", "b"}}}}};
  for (std::size_t size = 0; size < 9; ++size) {
    values.emplace_back(PropertyListData{std::string("\xFF\0\x80zz\r\n\xFE", 8).substr(0, size)});
  }
  for (const auto& value : values) EXPECT_EQ(this->writtenAndRead(value), value);
  const PropertyList list(std::move(values));
  EXPECT_EQ(this->writtenAndRead(list), list);
}

TYPED_TEST_P(PropertyListContract, TextThatXmlCannotCarryIsNotWritten) {
  for (const std::string& text :
       {std::string("a\0b", 3), std::string("\x01"), std::string("\x1B"),
        std::string("\xEF\xBF\xBE"), std::string("\xFF"), std::string("\xED\xA0\x80")}) {
    const auto why = "a text holds bytes that XML cannot carry";
    EXPECT_EQ(this->coder.xml(text).errorText(), why);
    EXPECT_EQ(this->coder.xml(PropertyListDictionary{{text, true}}).errorText(), why);
    EXPECT_EQ(this->coder.xml(PropertyListArray{"a", text}).errorText(), why);
  }
}

TYPED_TEST_P(PropertyListContract, NestingIsReadAndWrittenToItsLimitAndNoDeeper) {
  std::string inner, outer;
  for (int depth = 0; depth < 256; ++depth) inner += "<array>";
  for (int depth = 0; depth < 256; ++depth) outer += "</array>";
  EXPECT_EQ(this->read(inner + outer), nestedLists(256));
  EXPECT_TRUE(this->read("<array>" + inner + outer + "</array>").string()) << "refused";
  EXPECT_TRUE(this->coder.xml(nestedLists(256)));
  EXPECT_EQ(this->coder.xml(nestedLists(257)).errorText(), "nested too deeply");
}

REGISTER_TYPED_TEST_SUITE_P(PropertyListContract, ReadsEveryKindAsItself,
                            ReadsIntegersToTheEndOfTheirRange, ReadsTheDiskImageToolsNesting,
                            StringsKeepTheirWhiteSpaceAndDecodeReferences,
                            WhatIsNoPropertyListIsAnErrorWithAText, NoTruncationCrashes,
                            WritesTheHeadOfAMacsLists, WhatIsWrittenReadsBackTheSame,
                            TextThatXmlCannotCarryIsNotWritten,
                            NestingIsReadAndWrittenToItsLimitAndNoDeeper);

}  // namespace quillmont::testing
