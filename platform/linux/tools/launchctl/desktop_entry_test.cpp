#include "platform/linux/tools/launchctl/desktop_entry.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

/// What a desktop makes of the value of a key of type string.
std::string unescapedValue(const std::string& value) {
  std::string text;
  for (std::size_t at = 0; at < value.size(); ++at) {
    if (value[at] != '\\') {
      text += value[at];
      continue;
    }
    const char code = value.at(++at);
    text += code == 'n' ? '\n' : code == 't' ? '\t' : code == 'r' ? '\r' : code == 's' ? ' ' : code;
  }
  return text;
}

/// What a desktop starts for an Exec key, by the rules for desktop entries.
std::vector<std::string> startedBy(const std::string& exec) {
  const auto line = unescapedValue(exec);
  std::vector<std::string> arguments(1);
  bool quoted = false;
  for (std::size_t at = 0; at < line.size(); ++at) {
    if (line[at] == '"') {
      quoted = !quoted;
    } else if (line[at] == ' ' && !quoted) {
      arguments.emplace_back();
    } else {
      if (line[at] == '\\' && quoted) ++at;
      if (line[at] == '%') {
        EXPECT_EQ(line.at(++at), '%') << line;
      }
      arguments.back() += line.at(at);
    }
  }
  EXPECT_FALSE(quoted) << line;
  return arguments;
}

TEST(DesktopEntry, PlainProgramNeedsNoQuotes) {
  EXPECT_EQ(execValue({"/opt/Quillmont/Contents/MacOS/Quillmont"}),
            "/opt/Quillmont/Contents/MacOS/Quillmont");
}

TEST(DesktopEntry, SpaceIsQuoted) {
  EXPECT_EQ(execValue({"/opt/My Apps/Quillmont", "-v"}), "\"/opt/My Apps/Quillmont\" -v");
}

TEST(DesktopEntry, BackslashIsEscapedForTheQuotesAndForTheValue) {
  EXPECT_EQ(execValue({"a\\b"}), R"("a\\\\b")");
}

TEST(DesktopEntry, DollarBacktickAndQuoteAreEscaped) {
  EXPECT_EQ(execValue({"$`\""}), R"("\\$\\`\\"")");
}

TEST(DesktopEntry, PercentIsNoFieldCode) {
  EXPECT_EQ(execValue({"50%f"}), "50%%f");
}

TEST(DesktopEntry, OddArgumentsComeBackAsTheyWere) {
  const std::vector<std::string> arguments = {"/a b/映像\"quoted\"",
                                              "",
                                              "it's",
                                              "$HOME `id` $(id)",
                                              "\\",
                                              "\\\\\"",
                                              "100%",
                                              "%%u",
                                              "two\nlines\ttab\rreturn",
                                              ";rm -rf *?#~<>|&"};
  EXPECT_EQ(startedBy(execValue(arguments)), arguments);
}

TEST(DesktopEntry, ValueKeepsToOneLine) {
  EXPECT_EQ(entryValue(" a\\b\nc\td\re"), R"(\sa\\b\nc\td\re)");
  EXPECT_EQ(unescapedValue(entryValue(" a\\b\nc")), " a\\b\nc");
}

TEST(DesktopEntry, AutostartEntryHasEveryKey) {
  const LaunchAgent agent{"com.example.agent", {"/opt/a b/program", "%"}, true};
  EXPECT_EQ(autostartEntry(agent, "/home/u/Library/LaunchAgents/com.example.agent.plist"),
            "[Desktop Entry]\n"
            "Type=Application\n"
            "Name=Quillmont\n"
            "Exec=\"/opt/a b/program\" %%\n"
            "TryExec=/opt/a b/program\n"
            "X-GNOME-Autostart-enabled=true\n"
            "NoDisplay=true\n"
            "X-Quillmont-LaunchAgent=/home/u/Library/LaunchAgents/com.example.agent.plist\n");
}

TEST(DesktopEntry, NewlineInAProgramCannotAddAKey) {
  const LaunchAgent agent{"x", {"/a\nHidden=true"}, true};
  EXPECT_EQ(autostartEntry(agent, "/p\nHidden=true").find("\nHidden"), std::string::npos);
}

TEST(DesktopEntry, KnowsItsOwnEntries) {
  EXPECT_TRUE(isMadeFromLaunchAgent(autostartEntry({"x", {"/a"}, true}, "/p")));
  EXPECT_TRUE(isMadeFromLaunchAgent("[Desktop Entry]\nX-Quillmont-LaunchAgent=/p"));
}

TEST(DesktopEntry, ForeignEntriesAreNotItsOwn) {
  EXPECT_FALSE(isMadeFromLaunchAgent(""));
  EXPECT_FALSE(isMadeFromLaunchAgent("[Desktop Entry]\nExec=/a\n"));
  EXPECT_FALSE(isMadeFromLaunchAgent("X-Quillmont-LaunchAgent=/p\n"));
  EXPECT_FALSE(isMadeFromLaunchAgent("[Desktop Entry]\n#X-Quillmont-LaunchAgent=/p\n"));
  EXPECT_FALSE(isMadeFromLaunchAgent("[Desktop Entry]\n[Other]\nX-Quillmont-LaunchAgent=/p\n"));
}

}  // namespace
}  // namespace quillmont
