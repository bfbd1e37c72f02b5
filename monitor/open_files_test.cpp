#include "monitor/open_files.h"

#include <gmock/gmock.h>

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> counted(std::string_view output) {
  return countedProcessNames(output, "999", ignoredServicePrefixes());
}

TEST(OpenFiles, ProcessWithOpenDirectoryCounts) {
  EXPECT_THAT(counted("p123\ncFinder\nfcwd\nn/Volumes/A\n"), ElementsAre("Finder"));
}

TEST(OpenFiles, NameReportedTwiceIsListedOnce) {
  EXPECT_THAT(counted("p1\ncbash\nfcwd\nn/Volumes/A\np2\ncbash\nfcwd\nn/Volumes/A\n"),
              ElementsAre("bash"));
}

TEST(OpenFiles, OwnProcessDoesNotCount) {
  EXPECT_THAT(counted("p999\ncQuillmont\n"), IsEmpty());
}

TEST(OpenFiles, OwnIdentifierIsComparedAsText) {
  EXPECT_THAT(counted("p0999\ncQuillmont\n"), ElementsAre("Quillmont"));
}

TEST(OpenFiles, ToolItselfDoesNotCount) {
  EXPECT_THAT(counted("p1\nclsof\n"), IsEmpty());
}

TEST(OpenFiles, OtherSpellingsOfTheToolCount) {
  EXPECT_THAT(counted("p1\ncLSOF\np2\nclsof2\n"), ElementsAre("LSOF", "lsof2"));
}

TEST(OpenFiles, IgnoredServicesDoNotCountInAnyLetterCase) {
  EXPECT_THAT(counted("p1\ncmds\np2\ncmds_stores\np3\ncDropbox\np4\ncDROPBOXd\np5\ncHazelHelper\n"
                      "p6\nccloudd\np7\ncclouddocs\np8\ncfseventsd\np9\ncOneDrive\n"),
              IsEmpty());
}

TEST(OpenFiles, EveryIgnoredPrefixIsHonoured) {
  const std::vector<std::string> prefixes = {
      "mds",     "fsevents",   "spotlight",  "corespotlight", "quicklook",
      "cloudd",  "dbfsevents", "livefiles",  "hazel",         "sharedfilelist",
      "dropbox", "onedrive",   "googledrive"};
  EXPECT_EQ(ignoredServicePrefixes(), prefixes);
  for (const auto& prefix : prefixes) {
    EXPECT_THAT(counted("p1\nc" + prefix + "X\n"), IsEmpty()) << prefix;
  }
}

TEST(OpenFiles, NameThatOnlyResemblesAnIgnoredOneCounts) {
  EXPECT_THAT(counted("p1\ncMDWorker\np2\ncamds\np3\nccloud\n"),
              ElementsAre("MDWorker", "amds", "cloud"));
}

TEST(OpenFiles, LowerCasingFollowsUnicodeWhereItMeetsAsciiLetters) {
  EXPECT_THAT(counted("p1\ncquic\xE2\x84\xAAlook\n"), IsEmpty());
  EXPECT_THAT(counted("p1\ncÉditeur\n"), ElementsAre("Éditeur"));
}

TEST(OpenFiles, NameIsKeptAsPrinted) {
  EXPECT_THAT(counted("p1\nc文件 Viewer (x)\n"), ElementsAre("文件 Viewer (x)"));
}

TEST(OpenFiles, NameBeforeAnyIdentifierCounts) {
  EXPECT_THAT(counted("cbash\n"), ElementsAre("bash"));
}

TEST(OpenFiles, NameBeforeAnyIdentifierIsComparedWithTheEmptyOne) {
  EXPECT_THAT(countedProcessNames("cbash\n", "", ignoredServicePrefixes()), IsEmpty());
}

TEST(OpenFiles, EmptyOutputNamesNobody) {
  EXPECT_THAT(counted(""), IsEmpty());
}

TEST(OpenFiles, CarriageReturnsSplitFieldsToo) {
  EXPECT_THAT(counted("p1\r\ncbash\r\rfcwd\r\np2\rcvim"), ElementsAre("bash", "vim"));
}

TEST(OpenFiles, EveryNewlineCharacterSplits) {
  EXPECT_THAT(counted("p1\vca\fp2\xC2\x85"
                      "cb\xE2\x80\xA8p3\xE2\x80\xA9"
                      "cc"),
              ElementsAre("a", "b", "c"));
}

TEST(OpenFiles, OtherFieldsAreIgnored) {
  EXPECT_THAT(counted("p1\nu501\nLuser\ncbash\nf3\nncFake\nTST=x\n"), ElementsAre("bash"));
}

TEST(OpenFiles, OutputThatIsNotUtf8NamesNobody) {
  for (const std::string bad :
       {"\xFF", "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xED\xA0\x80", "\xF0\x80\x80\x80",
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xE4\xB8", "\x80"}) {
    EXPECT_THAT(counted("p1\ncbash\nn" + bad), IsEmpty()) << bad;
  }
}

TEST(OpenFiles, WellFormedUtf8OfEveryLengthPasses) {
  EXPECT_THAT(counted("p1\ncbash\nn\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF"
                      "\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"),
              ElementsAre("bash"));
}

TEST(OpenFiles, EmptyNameCounts) {
  EXPECT_THAT(counted("p1\nc\n"), ElementsAre(""));
}

}  // namespace
}  // namespace quillmont
