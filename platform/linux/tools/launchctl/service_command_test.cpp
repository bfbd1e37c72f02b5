#include "platform/linux/tools/launchctl/service_command.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "platform/linux/XmlPropertyLists.h"
#include "platform/posix/files.h"
#include "tests/support/Program.h"

namespace quillmont {
namespace {

TEST(ServiceCommand, ReadsTheFourForms) {
  EXPECT_EQ(parseServiceCommand({"bootstrap", "gui/501", "/a.plist"}),
            (ServiceCommand{ServiceVerb::bootstrap, "501", "/a.plist"}));
  EXPECT_EQ(parseServiceCommand({"bootout", "gui/0", "/a.plist"}),
            (ServiceCommand{ServiceVerb::bootout, "0", "/a.plist"}));
  EXPECT_EQ(parseServiceCommand({"load", "/a b.plist"}),
            (ServiceCommand{ServiceVerb::load, "", "/a b.plist"}));
  EXPECT_EQ(parseServiceCommand({"unload", "/a.plist"}),
            (ServiceCommand{ServiceVerb::unload, "", "/a.plist"}));
}

TEST(ServiceCommand, RefusesEveryOtherForm) {
  const std::vector<std::vector<std::string>> refused = {{},
                                                         {"load"},
                                                         {"load", ""},
                                                         {"list"},
                                                         {"load", "-w", "/a.plist"},
                                                         {"load", "gui/0", "/a.plist"},
                                                         {"bootstrap", "/a.plist"},
                                                         {"bootstrap", "gui/", "/a.plist"},
                                                         {"bootstrap", "gui/0x1", "/a.plist"},
                                                         {"bootstrap", "gui/-1", "/a.plist"},
                                                         {"bootstrap", "user/0", "/a.plist"},
                                                         {"bootstrap", "gui/0", ""},
                                                         {"Load", "/a.plist"}};
  for (const auto& arguments : refused) EXPECT_FALSE(parseServiceCommand(arguments));
}

TEST(ServiceCommand, PathSplitAtItsSpaceIsRefused) {
  EXPECT_FALSE(parseServiceCommand({"bootstrap", "gui/0", "/home/my", "home/a.plist"}));
  EXPECT_FALSE(parseServiceCommand({"load", "/home/my", "home/a.plist"}));
}

class LoginItems : public ::testing::Test {
 protected:
  void SetUp() override { writeAgent(true); }

  void writeAgent(bool runAtLoad) {
    const PropertyListDictionary agent = {{"Label", "com.example.agent"},
                                          {"ProgramArguments", PropertyListArray{"/opt/program"}},
                                          {"RunAtLoad", runAtLoad}};
    const auto xml = XmlPropertyLists().xml(agent);
    ASSERT_TRUE(xml) << xml.errorText();
    ASSERT_TRUE(replaceFile(agent_, *xml));
  }

  ServiceOutcome run(ServiceVerb verb) {
    const bool domain = verb == ServiceVerb::bootstrap || verb == ServiceVerb::bootout;
    return runServiceCommand({verb, domain ? "7" : "", agent_}, "7", autostart_);
  }

  std::string entry() const {
    const auto text = readFile(entryPath_);
    return text ? *text : "";
  }

  void putEntry(const std::string& text) {
    ASSERT_TRUE(createFolders(autostart_, 0700));
    ASSERT_TRUE(replaceFile(entryPath_, text));
  }

  const testing::TemporaryFolder folder_;
  const std::string agent_ = folder_.path() + "/com.example.agent.plist";
  const std::string autostart_ = folder_.path() + "/config/autostart";
  const std::string entryPath_ = autostart_ + "/com.example.agent.desktop";
  const ServiceOutcome success_ = {};
};

TEST_F(LoginItems, BootstrapMakesTheEntryAndItsFolder) {
  EXPECT_EQ(run(ServiceVerb::bootstrap), success_);
  EXPECT_NE(entry().find("\nExec=/opt/program\n"), std::string::npos) << entry();
  EXPECT_NE(entry().find("\nX-Quillmont-LaunchAgent=" + agent_ + "\n"), std::string::npos);
}

TEST_F(LoginItems, SecondBootstrapFailsAndLoadRewrites) {
  putEntry("[Desktop Entry]\nExec=/old\n");
  EXPECT_EQ(run(ServiceVerb::bootstrap),
            (ServiceOutcome{5, "Bootstrap failed: 5: Input/output error"}));
  EXPECT_NE(entry().find("/old"), std::string::npos);
  EXPECT_EQ(run(ServiceVerb::load), success_);
  EXPECT_EQ(entry().find("/old"), std::string::npos);
}

TEST_F(LoginItems, DomainOfAnotherUserIsRefused) {
  const auto outcome = runServiceCommand({ServiceVerb::bootstrap, "8", agent_}, "7", autostart_);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_FALSE(outcome.complaint.empty());
  EXPECT_FALSE(std::filesystem::exists(entryPath_));
}

TEST_F(LoginItems, BootoutRemovesTheEntry) {
  EXPECT_EQ(run(ServiceVerb::load), success_);
  EXPECT_EQ(run(ServiceVerb::bootout), success_);
  EXPECT_FALSE(std::filesystem::exists(entryPath_));
}

TEST_F(LoginItems, UnloadRemovesTheEntry) {
  EXPECT_EQ(run(ServiceVerb::load), success_);
  EXPECT_EQ(run(ServiceVerb::unload), success_);
  EXPECT_FALSE(std::filesystem::exists(entryPath_));
}

TEST_F(LoginItems, RemovalGoesByTheFileNameWhenTheAgentIsGone) {
  EXPECT_EQ(run(ServiceVerb::load), success_);
  std::filesystem::remove(agent_);
  EXPECT_EQ(run(ServiceVerb::bootout), success_);
  EXPECT_FALSE(std::filesystem::exists(entryPath_));
}

TEST_F(LoginItems, RemovalGoesByTheFileNameWhenTheAgentIsDamaged) {
  EXPECT_EQ(run(ServiceVerb::load), success_);
  ASSERT_TRUE(replaceFile(agent_, "no property list"));
  EXPECT_EQ(run(ServiceVerb::unload), success_);
  EXPECT_FALSE(std::filesystem::exists(entryPath_));
}

TEST_F(LoginItems, NothingToRemoveIsAnErrorForBootoutAlone) {
  EXPECT_EQ(run(ServiceVerb::bootout), (ServiceOutcome{3, "Boot-out failed: 3: No such process"}));
  EXPECT_EQ(run(ServiceVerb::unload), success_);
}

TEST_F(LoginItems, ForeignEntryIsNotRemoved) {
  putEntry("[Desktop Entry]\nExec=/foreign\n");
  EXPECT_EQ(run(ServiceVerb::bootout).status, 3);
  EXPECT_EQ(run(ServiceVerb::unload), success_);
  EXPECT_NE(entry().find("/foreign"), std::string::npos);
}

TEST_F(LoginItems, DamagedAgentIsNotLoaded) {
  ASSERT_TRUE(replaceFile(agent_, "no property list"));
  EXPECT_EQ(run(ServiceVerb::bootstrap).status, 5);
  EXPECT_EQ(run(ServiceVerb::load).status, 5);
  EXPECT_FALSE(std::filesystem::exists(entryPath_));
}

TEST_F(LoginItems, SymbolicLinkIsReplacedNotFollowed) {
  const auto victim = folder_.path() + "/victim";
  ASSERT_TRUE(replaceFile(victim, "precious"));
  ASSERT_TRUE(createFolders(autostart_, 0700));
  ASSERT_EQ(symlink(victim.c_str(), entryPath_.c_str()), 0);
  EXPECT_EQ(run(ServiceVerb::load), success_);
  EXPECT_FALSE(std::filesystem::is_symlink(entryPath_));
  const auto kept = readFile(victim);
  ASSERT_TRUE(kept);
  EXPECT_EQ(*kept, "precious");
}

TEST_F(LoginItems, SymbolicLinkToAnEntryIsNotRemoved) {
  EXPECT_EQ(run(ServiceVerb::load), success_);
  const auto real = folder_.path() + "/real.desktop";
  std::filesystem::rename(entryPath_, real);
  ASSERT_EQ(symlink(real.c_str(), entryPath_.c_str()), 0);
  EXPECT_EQ(run(ServiceVerb::bootout).status, 3);
  EXPECT_TRUE(std::filesystem::exists(real));
}

TEST_F(LoginItems, AgentThatDoesNotRunAtLoginHasNoEntry) {
  writeAgent(false);
  EXPECT_EQ(run(ServiceVerb::bootstrap), success_);
  EXPECT_FALSE(std::filesystem::exists(entryPath_));
}

TEST_F(LoginItems, LoadOfAnAgentThatNoLongerRunsAtLoginTakesItsEntryAway) {
  EXPECT_EQ(run(ServiceVerb::load), success_);
  writeAgent(false);
  EXPECT_EQ(run(ServiceVerb::load), success_);
  EXPECT_FALSE(std::filesystem::exists(entryPath_));
}

TEST_F(LoginItems, FolderThatCannotBeMadeIsAnError) {
  ASSERT_TRUE(replaceFile(folder_.path() + "/config", "a file"));
  EXPECT_EQ(run(ServiceVerb::bootstrap).status, 5);
  EXPECT_EQ(run(ServiceVerb::load).status, 5);
}

}  // namespace
}  // namespace quillmont
