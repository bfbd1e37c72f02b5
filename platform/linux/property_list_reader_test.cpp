#include "platform/linux/property_list_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/linux/XmlPropertyLists.h"
#include "tests/support/PropertyListContract.h"

namespace quillmont {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

const XmlPropertyLists kLists;

/// The value of the list whose root element holds `content`; a text that starts with "refused"
/// where there is none.
PropertyList read(const std::string& content) {
  auto list = kLists.parse(testing::plistDocument(content));
  return list ? *list : PropertyList("refused: " + list.errorText());
}

std::string refusal(const std::string& bytes) {
  const auto list = kLists.parse(bytes);
  return list ? "accepted" : list.errorText();
}

/// `text`, which is ASCII, in UTF-16.
std::string utf16(const std::string& text, bool bigEndian, bool byteOrderMark) {
  std::string bytes;
  const auto add = [&](char high, char low) {
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  };
  if (byteOrderMark) add('\xFE', '\xFF');
  for (const char c : text) add('\0', c);
  return bytes;
}

std::string nestedArrays(std::size_t depth) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) text += "<array>";
  for (std::size_t i = 0; i < depth; ++i) text += "</array>";
  return text;
}

TEST(XmlPropertyLists, ReadsEveryTypeAsItself) {
  EXPECT_EQ(read("<true/>"), PropertyList(true));
  EXPECT_EQ(read("<false></false>"), PropertyList(false));
  EXPECT_EQ(read("<integer>1</integer>"), PropertyList(std::int64_t{1}));
  EXPECT_EQ(read("<real>1</real>"), PropertyList(1.0));
  EXPECT_EQ(read("<string>1</string>"), PropertyList("1"));
  EXPECT_EQ(read("<string/>"), PropertyList(""));
  EXPECT_EQ(read("<data>AQID</data>"), PropertyList(PropertyListData{"\1\2\3"}));
  EXPECT_EQ(read("<date>2024-02-30T99:00:00Z</date>"),
            PropertyList(PropertyListDate{"2024-02-30T99:00:00Z"}));
  EXPECT_EQ(read("<array/>"), PropertyList(PropertyListArray()));
  EXPECT_EQ(read(" <dict>\n</dict> "), PropertyList(PropertyListDictionary()));
}

TEST(XmlPropertyLists, KeepsDuplicateKeysSoThatTheLastOneCounts) {
  const auto list = read("<dict><key>a</key><true/><key>a</key><string>x</string></dict>");
  ASSERT_TRUE(list.dictionary());
  EXPECT_EQ(list.dictionary()->size(), 2u);
  EXPECT_EQ(*list.find("a"), PropertyList("x"));
}

TEST(XmlPropertyLists, StringsKeepTheirWhiteSpaceAndDecodeReferences) {
  EXPECT_EQ(read("<string> a\n\tb </string>"), PropertyList(" a\n\tb "));
  EXPECT_EQ(read("<string>&lt;&#x78c1;&#30424;&amp;&#13;</string>"),
            PropertyList("<\u78c1\u76d8&\r"));
  EXPECT_EQ(read("<string>a<![CDATA[<b>&amp;]]>c</string>"), PropertyList("a<b>&amp;c"));
  EXPECT_EQ(read("<!-- note --><string>a<!-- note -->b</string>"), PropertyList("ab"));
}

TEST(XmlPropertyLists, IntegersAreSignedWhereTheyFitAndElseUnsigned) {
  EXPECT_EQ(read("<integer> -5\n</integer>"), PropertyList(std::int64_t{-5}));
  EXPECT_EQ(read("<integer>+5</integer>"), PropertyList(std::int64_t{5}));
  EXPECT_EQ(read("<integer>0xfF</integer>"), PropertyList(std::int64_t{255}));
  EXPECT_EQ(read("<integer>-0X10</integer>"), PropertyList(std::int64_t{-16}));
  EXPECT_EQ(read("<integer>9223372036854775807</integer>"),
            PropertyList(std::numeric_limits<std::int64_t>::max()));
  EXPECT_EQ(read("<integer>-9223372036854775808</integer>"),
            PropertyList(std::numeric_limits<std::int64_t>::min()));
  EXPECT_EQ(read("<integer>9223372036854775808</integer>"),
            PropertyList(std::uint64_t{9223372036854775808u}));
  EXPECT_EQ(read("<integer>18446744073709551615</integer>"),
            PropertyList(std::numeric_limits<std::uint64_t>::max()));
}

TEST(XmlPropertyLists, TextsThatAreNoIntegersOf64BitsAreRefused) {
  for (const char* text : {"", " ", "x", "1x", "1 2", "1.0", "--1", "+-1", "0x", "0xg", "- 1",
                           "18446744073709551616", "-9223372036854775809", "1e3"}) {
    EXPECT_THAT(refusal(testing::plistDocument("<integer>" + std::string(text) + "</integer>")),
                HasSubstr("not an integer of 64 bits"))
        << text;
  }
}

TEST(XmlPropertyLists, RealsAreReadWhateverTheirSpelling) {
  EXPECT_EQ(read("<real> 900.5\n</real>"), PropertyList(900.5));
  EXPECT_EQ(read("<real>+1e-3</real>"), PropertyList(0.001));
  EXPECT_EQ(read("<real>-.5</real>"), PropertyList(-0.5));
  constexpr auto kInfinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(read("<real>+infinity</real>"), PropertyList(kInfinity));
  EXPECT_EQ(read("<real>-INF</real>"), PropertyList(-kInfinity));
  const auto list = read("<real>nan</real>");
  ASSERT_TRUE(list.as<double>());
  EXPECT_TRUE(std::isnan(*list.as<double>()));
}

TEST(XmlPropertyLists, TextsThatAreNoRealsAreRefused) {
  for (const char* text : {"", "x", "1,5", "1.5s", "0x1p3", "+-1", "1e999", "nan(1)", "1 2"}) {
    EXPECT_THAT(refusal(testing::plistDocument("<real>" + std::string(text) + "</real>")),
                HasSubstr("not a real number"))
        << text;
  }
}

TEST(XmlPropertyLists, DataIsDecodedStrictly) {
  EXPECT_EQ(read("<data>\n\tAQ\n\tID BA==\n</data>"), PropertyList(PropertyListData{"\1\2\3\4"}));
  EXPECT_EQ(read("<data/>"), PropertyList(PropertyListData{}));
  for (const char* text :
       {"A", "AQ", "AQI", "AQID=", "AQ=D", "=AQI", "A===", "====", "AR==", "AQID!", "AQ==AQ=="}) {
    EXPECT_THAT(refusal(testing::plistDocument("<data>" + std::string(text) + "</data>")),
                HasSubstr("not base64"))
        << text;
  }
}

TEST(XmlPropertyLists, ReadsUtf8AndUtf16WithAndWithoutByteOrderMark) {
  const std::string text = "<plist><string>x</string></plist>";
  EXPECT_TRUE(kLists.parse("\xEF\xBB\xBF" + testing::plistDocument("<string>x</string>")));
  for (const bool bigEndian : {false, true}) {
    for (const bool mark : {false, true}) {
      auto list = kLists.parse(utf16(text, bigEndian, mark));
      ASSERT_TRUE(list) << bigEndian << mark << list.errorText();
      EXPECT_EQ(*list, PropertyList("x"));
    }
  }
}

TEST(XmlPropertyLists, ErrorsTellTheFirstFailureWithItsLineAndColumn) {
  EXPECT_EQ(refusal("<plist>\n<dict>\n  <key>a</key><integer>x</integer><bad/></dict></plist>"),
            "line 3, column 25: not an integer of 64 bits");
  EXPECT_EQ(refusal("<plist>\n<string></plist>"), "line 2, column 11: mismatched tag");
  EXPECT_EQ(refusal(""), "line 1, column 1: no element found");
}

TEST(XmlPropertyLists, WrongStructureIsRefused) {
  const std::pair<const char*, const char*> cases[] = {
      {"<dict/>", "the root is no <plist>"},
      {"<plist/>", "no value"},
      {"<plist><true/><true/></plist>", "more than one value"},
      {"<plist><array/><dict/></plist>", "more than one value"},
      {"<plist><plist><true/></plist></plist>", "a <plist> inside of another"},
      {"<plist><dict><key>a</key></dict></plist>", "a key without a value"},
      {"<plist><dict><key>a</key><key>b</key><true/></dict></plist>", "a key without a value"},
      {"<plist><dict><true/></dict></plist>", "a value without a key"},
      {"<plist><dict><key>a</key><true/><true/></dict></plist>", "a value without a key"},
      {"<plist><key>a</key></plist>", "a key outside of a dictionary"},
      {"<plist><array><key>a</key></array></plist>", "a key outside of a dictionary"},
      {"<plist><string>a<b/></string></plist>", "unknown element <b>"},
      {"<plist><string>a<true/></string></plist>", "an element inside of text"},
      {"<plist><true>x</true></plist>", "text inside of a boolean"},
      {"<plist>x<true/></plist>", "text outside of a value"},
      {"<plist><array>x</array></plist>", "text outside of a value"},
      {"<plist><Dict/></plist>", "unknown element <Dict>"},
      {"<plist><true/></plist><plist/>", "junk after document element"},
      {"<plist><true/></plist>x", "junk after document element"},
      {"<plist><true/>", "no element found"},
      {"<plist><string>\xFF</string></plist>", "not well-formed"},
      {"<plist><string>\xED\xA0\x80</string></plist>", "not well-formed"},
      {"<plist><string>&#0;</string></plist>", "invalid character number"},
  };
  for (const auto& [bytes, why] : cases) {
    EXPECT_THAT(refusal(bytes), HasSubstr(why)) << bytes;
    EXPECT_THAT(refusal(bytes), StartsWith("line 1, column ")) << bytes;
  }
}

TEST(XmlPropertyLists, NulBytesAreRefusedWhereverTheyStand) {
  const auto good = testing::plistDocument("<dict><key>a</key><string>b</string></dict>");
  for (std::size_t at = 0; at <= good.size(); ++at) {
    auto bytes = good;
    bytes.insert(at, 1, '\0');
    EXPECT_FALSE(kLists.parse(bytes)) << at;
  }
}

TEST(XmlPropertyLists, EveryTruncationIsRefusedAndNoneCrashes) {
  const auto good = testing::plistDocument(
      "<dict><key>a</key><array><real>1</real><data>AQID</data><true/></array></dict>");
  const auto end = good.rfind('>');
  for (std::size_t size = 0; size <= end; ++size) {
    EXPECT_FALSE(kLists.parse(good.substr(0, size))) << size;
  }
}

TEST(XmlPropertyLists, OtherEncodingsOfPropertyListsAreNamed) {
  EXPECT_THAT(refusal(std::string("bplist00\xA0\0", 10)), HasSubstr("binary property list"));
  EXPECT_THAT(refusal("{ a = b; }"), HasSubstr("old-style property list"));
  EXPECT_THAT(refusal("\n( a, b )"), HasSubstr("old-style property list"));
}

TEST(XmlPropertyLists, DeclaredEntitiesAreRefusedBeforeAnythingIsExpanded) {
  EXPECT_THAT(refusal("<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]>"
                      "<plist><string>&b;</string></plist>"),
              HasSubstr("an entity is declared"));
  EXPECT_THAT(refusal("<!DOCTYPE plist [<!ENTITY a SYSTEM \"file:///etc/passwd\">]>"
                      "<plist><string>&a;</string></plist>"),
              HasSubstr("an entity is declared"));
  EXPECT_THAT(refusal("<!DOCTYPE plist [<!ENTITY % a SYSTEM \"file:///etc/passwd\">%a;]>"
                      "<plist><true/></plist>"),
              HasSubstr("an entity is declared"));
}

TEST(XmlPropertyLists, UndeclaredEntitiesAreRefusedWithAndWithoutADocumentType) {
  EXPECT_THAT(refusal(testing::plistDocument("<string>&unknown;</string>")),
              HasSubstr("undeclared entity unknown"));
  EXPECT_THAT(refusal("<plist><string>&unknown;</string></plist>"), HasSubstr("undefined entity"));
}

TEST(XmlPropertyLists, NestingIsReadToItsLimitAndRefusedBeyond) {
  EXPECT_EQ(read(nestedArrays(256)), testing::nestedLists(256));
  EXPECT_THAT(refusal(testing::plistDocument(nestedArrays(257))), HasSubstr("nested too deeply"));
  EXPECT_THAT(refusal(testing::plistDocument(nestedArrays(1'000'000))),
              HasSubstr("nested too deeply"));
}

TEST(XmlPropertyLists, TooManyValuesAreRefused) {
  const auto bytes =
      testing::plistDocument("<dict><key>a</key><array><true/><real>1</real></array></dict>");
  EXPECT_TRUE(readXmlPropertyList(bytes, 4));
  EXPECT_THAT(readXmlPropertyList(bytes, 3).errorText(), HasSubstr("too many values"));
}

TEST(XmlPropertyLists, TooManyBytesAreRefused) {
  const std::string bytes((64u << 20) + 1, ' ');
  EXPECT_EQ(refusal(bytes), "a property list of too many bytes");
}

}  // namespace
}  // namespace quillmont
