#include "platform/linux/tools/launchctl/LaunchAgent.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/posix/files.h"
#include "tests/support/Program.h"

namespace quillmont {
namespace {

PropertyListDictionary goodAgent() {
  return {{"Label", "com.example.agent"},
          {"ProgramArguments", PropertyListArray{"/opt/program", "-x"}},
          {"RunAtLoad", true},
          {"KeepAlive", false}};
}

/// A good agent but for the entry `key`.
PropertyList agentWith(const std::string& key, PropertyList value) {
  auto dictionary = goodAgent();
  dictionary.emplace_back(key, std::move(value));
  return dictionary;
}

PropertyList agentWithout(const std::string& key) {
  auto dictionary = goodAgent();
  std::erase_if(dictionary, [&](const auto& entry) { return entry.first == key; });
  return dictionary;
}

TEST(LaunchAgent, ReadsLabelProgramAndRunAtLoad) {
  const auto agent = launchAgentOf(goodAgent());
  ASSERT_TRUE(agent) << agent.errorText();
  EXPECT_EQ(*agent, (LaunchAgent{"com.example.agent", {"/opt/program", "-x"}, true}));
}

TEST(LaunchAgent, DoesNotRunAtLoginUnlessToldSo) {
  const auto agent = launchAgentOf(agentWithout("RunAtLoad"));
  ASSERT_TRUE(agent) << agent.errorText();
  EXPECT_FALSE(agent->runAtLoad);
}

TEST(LaunchAgent, RefusesAnUnusableLabel) {
  EXPECT_FALSE(launchAgentOf(agentWithout("Label")));
  EXPECT_FALSE(launchAgentOf(agentWith("Label", "")));
  EXPECT_FALSE(launchAgentOf(agentWith("Label", "../../.bashrc")));
  EXPECT_FALSE(launchAgentOf(agentWith("Label", true)));
}

TEST(LaunchAgent, RefusesUnusableProgramArguments) {
  EXPECT_FALSE(launchAgentOf(agentWithout("ProgramArguments")));
  EXPECT_FALSE(launchAgentOf(agentWith("ProgramArguments", "/opt/program")));
  EXPECT_FALSE(launchAgentOf(agentWith("ProgramArguments", PropertyListArray{})));
  EXPECT_FALSE(launchAgentOf(agentWith("ProgramArguments", PropertyListArray{""})));
  EXPECT_FALSE(launchAgentOf(agentWith("ProgramArguments", PropertyListArray{"/a", true})));
}

TEST(LaunchAgent, RefusesRunAtLoadThatIsNoBoolean) {
  EXPECT_FALSE(launchAgentOf(agentWith("RunAtLoad", std::int64_t{1})));
}

TEST(LaunchAgent, RefusesAListThatIsNoDictionary) {
  EXPECT_FALSE(launchAgentOf(PropertyListArray{}));
}

TEST(LaunchAgent, FileThatCannotBeReadIsAnErrorWithItsReason) {
  const testing::TemporaryFolder folder;
  const auto missing = readLaunchAgent(folder.path() + "/missing.plist");
  ASSERT_FALSE(missing);
  EXPECT_NE(missing.errorText().find("No such file"), std::string::npos) << missing.errorText();
  const auto damaged = folder.path() + "/damaged.plist";
  ASSERT_TRUE(replaceFile(damaged, "<plist><dict>"));
  EXPECT_FALSE(readLaunchAgent(damaged));
}

TEST(LaunchAgent, FifoInPlaceOfTheFileDoesNotBlock) {
  const testing::TemporaryFolder folder;
  const auto path = folder.path() + "/agent.plist";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  EXPECT_FALSE(readLaunchAgent(path));
}

TEST(LaunchAgent, LabelComesFromTheFileName) {
  EXPECT_EQ(labelOfFileName("/home/u/Library/LaunchAgents/com.example.agent.plist"),
            "com.example.agent");
  EXPECT_EQ(labelOfFileName("agent.plist"), "agent");
  EXPECT_EQ(labelOfFileName("/x/agent"), "agent");
}

}  // namespace
}  // namespace quillmont
