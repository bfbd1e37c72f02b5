#include "settings/ConfigManager.h"

#include <gmock/gmock.h>

#include "tests/support/TestHost.h"

namespace quillmont {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::TestHost;
using Strings = std::vector<std::string>;

constexpr char kTimeout[] = "com.norwaldex.quillmont.timeoutSeconds";
constexpr char kEnabled[] = "com.norwaldex.quillmont.isEnabled";
constexpr char kExcluded[] = "com.norwaldex.quillmont.excludeList";
constexpr char kLaunch[] = "com.norwaldex.quillmont.launchAtLogin";

class Settings : public ::testing::Test {
 protected:
  void store(const std::string& key, PropertyList value) {
    system.defaults.values.insert_or_assign(key, std::move(value));
  }

  ConfigManager load() { return ConfigManager(system.host()); }

  TestHost system;
};

/// Counts what the settings ask of the launch agent.
class CountingSettings : public ConfigManager {
 public:
  CountingSettings(const Host& host, const testing::MemoryDefaults& store)
      : ConfigManager(host), store_(store) {}
  void updateLaunchAgent() override {
    launchesSeen.push_back(launchAtLogin());
    EXPECT_EQ(store_.object(kLaunch), PropertyList(launchAtLogin())) << "stored before";
  }
  std::vector<bool> launchesSeen;

 private:
  const testing::MemoryDefaults& store_;
};

TEST_F(Settings, EmptyStoreGivesTheDefaultsAndStaysEmpty) {
  auto config = load();
  EXPECT_EQ(config.timeoutSeconds(), 900.0);
  EXPECT_TRUE(config.isEnabled());
  EXPECT_THAT(config.excludeList(), IsEmpty());
  EXPECT_FALSE(config.launchAtLogin());
  EXPECT_TRUE(system.defaults.values.empty());
  EXPECT_THAT(system.defaults.writes, IsEmpty());
  EXPECT_THAT(system.processes.launches, IsEmpty());
}

TEST_F(Settings, StoredValuesAreRead) {
  store(kTimeout, 45.5);
  store(kEnabled, false);
  store(kExcluded, PropertyListArray{"/b.dmg", "/a.dmg"});
  store(kLaunch, true);
  auto config = load();
  EXPECT_EQ(config.timeoutSeconds(), 45.5);
  EXPECT_FALSE(config.isEnabled());
  EXPECT_THAT(config.excludeList(), ElementsAre("/b.dmg", "/a.dmg"));
  EXPECT_TRUE(config.launchAtLogin());
  EXPECT_THAT(system.defaults.writes, IsEmpty());
  EXPECT_THAT(system.processes.launches, IsEmpty()) << "loading does not touch the launch agent";
}

TEST_F(Settings, TimeoutStoredAsWholeNumberIsRead) {
  store(kTimeout, std::int64_t{600});
  EXPECT_EQ(load().timeoutSeconds(), 600.0);
}

TEST_F(Settings, TimeoutThatIsNoNumberIsTheDefault) {
  for (const PropertyList& value :
       {PropertyList("600"), PropertyList(true), PropertyList(PropertyListArray{}),
        PropertyList(std::int64_t{(1LL << 53) + 1})}) {
    store(kTimeout, value);
    EXPECT_EQ(load().timeoutSeconds(), 900.0);
  }
}

TEST_F(Settings, TimeoutIsNotClamped) {
  store(kTimeout, -5.0);
  EXPECT_EQ(load().timeoutSeconds(), -5.0);
  store(kTimeout, std::int64_t{0});
  EXPECT_EQ(load().timeoutSeconds(), 0.0);
}

TEST_F(Settings, NumberThatIsExactlyZeroOrOneCountsAsBoolean) {
  for (const PropertyList& one : {PropertyList(std::int64_t{1}), PropertyList(1.0)}) {
    store(kEnabled, one);
    store(kLaunch, one);
    EXPECT_TRUE(load().isEnabled());
    EXPECT_TRUE(load().launchAtLogin());
  }
  for (const PropertyList& zero : {PropertyList(std::int64_t{0}), PropertyList(0.0)}) {
    store(kEnabled, zero);
    store(kLaunch, zero);
    EXPECT_FALSE(load().isEnabled());
    EXPECT_FALSE(load().launchAtLogin());
  }
}

TEST_F(Settings, AnythingElseThatIsNoBooleanIsTheDefault) {
  for (const PropertyList& value :
       {PropertyList("false"), PropertyList(std::int64_t{2}), PropertyList(0.5),
        PropertyList(std::int64_t{-1}), PropertyList(PropertyListDictionary{})}) {
    store(kEnabled, value);
    store(kLaunch, value);
    EXPECT_TRUE(load().isEnabled());
    EXPECT_FALSE(load().launchAtLogin());
  }
}

TEST_F(Settings, ExcludeListWithAnotherElementIsEmpty) {
  store(kExcluded, PropertyListArray{"/a.dmg", std::int64_t{3}});
  EXPECT_THAT(load().excludeList(), IsEmpty());
  store(kExcluded, PropertyList("/a.dmg"));
  EXPECT_THAT(load().excludeList(), IsEmpty());
}

TEST_F(Settings, EveryAssignmentIsWritten) {
  CountingSettings config(system.host(), system.defaults);
  config.setTimeoutSeconds(60);
  config.setTimeoutSeconds(60);
  config.setIsEnabled(false);
  config.setExcludeList({"/a.dmg"});
  config.setLaunchAtLogin(true);
  EXPECT_THAT(system.defaults.writes,
              ElementsAre(kTimeout, kTimeout, kEnabled, kExcluded, kLaunch));
  EXPECT_EQ(system.defaults.values.at(kTimeout), PropertyList(60.0));
  EXPECT_EQ(system.defaults.values.at(kEnabled), PropertyList(false));
  EXPECT_EQ(system.defaults.values.at(kExcluded), PropertyList(PropertyListArray{"/a.dmg"}));
  EXPECT_EQ(system.defaults.values.at(kLaunch), PropertyList(true));
  config.setIsEnabled(true);
  config.setLaunchAtLogin(false);
  EXPECT_EQ(system.defaults.values.at(kEnabled), PropertyList(true));
  EXPECT_EQ(system.defaults.values.at(kLaunch), PropertyList(false));
}

TEST_F(Settings, ChangeInPlaceIsOneWrite) {
  CountingSettings config(system.host(), system.defaults);
  config.modifyTimeoutSeconds([](double& seconds) { seconds /= 2; });
  config.modifyIsEnabled([](bool& enabled) { enabled = !enabled; });
  config.modifyExcludeList([](Strings& paths) { paths = {"/a.dmg", "/b.dmg"}; });
  config.modifyLaunchAtLogin([](bool& launch) { launch = !launch; });
  EXPECT_EQ(config.timeoutSeconds(), 450);
  EXPECT_FALSE(config.isEnabled());
  EXPECT_THAT(config.excludeList(), ElementsAre("/a.dmg", "/b.dmg"));
  EXPECT_TRUE(config.launchAtLogin());
  EXPECT_THAT(system.defaults.writes, ElementsAre(kTimeout, kEnabled, kExcluded, kLaunch));
}

TEST_F(Settings, LaunchAtLoginUpdatesTheAgentAtEveryAssignment) {
  CountingSettings config(system.host(), system.defaults);
  config.setLaunchAtLogin(false);
  config.setLaunchAtLogin(true);
  config.setLaunchAtLogin(true);
  EXPECT_THAT(config.launchesSeen, ElementsAre(false, true, true));
  EXPECT_EQ(system.defaults.writes.size(), 3u);
}

TEST_F(Settings, ExcludingTwiceLeavesOneEntryAndWritesOnce) {
  auto config = load();
  config.excludeImage("/a.dmg");
  config.excludeImage("/a.dmg");
  EXPECT_THAT(config.excludeList(), ElementsAre("/a.dmg"));
  EXPECT_THAT(system.defaults.writes, ElementsAre(kExcluded));
}

TEST_F(Settings, IncludingAnUnknownImageWritesNothing) {
  auto config = load();
  config.includeImage("/a.dmg");
  EXPECT_THAT(system.defaults.writes, IsEmpty());
}

TEST_F(Settings, IncludingRemovesTheFirstEntryAlone) {
  store(kExcluded, PropertyListArray{"/x.dmg", "/a.dmg", "/y.dmg", "/a.dmg"});
  auto config = load();
  config.includeImage("/a.dmg");
  EXPECT_THAT(config.excludeList(), ElementsAre("/x.dmg", "/y.dmg", "/a.dmg"));
  EXPECT_TRUE(config.isExcluded("/a.dmg"));
}

TEST_F(Settings, TogglingTwiceLeavesTheListAsItWas) {
  auto config = load();
  config.excludeImage("/x.dmg");
  config.toggleExclude("/a.dmg");
  EXPECT_THAT(config.excludeList(), ElementsAre("/x.dmg", "/a.dmg"));
  config.toggleExclude("/a.dmg");
  EXPECT_THAT(config.excludeList(), ElementsAre("/x.dmg"));
}

TEST_F(Settings, TogglingTwiceInTheMiddleMovesToTheEnd) {
  store(kExcluded, PropertyListArray{"/a.dmg", "/b.dmg", "/c.dmg"});
  auto config = load();
  config.toggleExclude("/b.dmg");
  config.toggleExclude("/b.dmg");
  EXPECT_THAT(config.excludeList(), ElementsAre("/a.dmg", "/c.dmg", "/b.dmg"));
}

TEST_F(Settings, PathsThatDifferInLetterCaseAreDifferent) {
  auto config = load();
  config.excludeImage("/a.dmg");
  EXPECT_FALSE(config.isExcluded("/A.dmg"));
  config.excludeImage("/A.dmg");
  EXPECT_THAT(config.excludeList(), ElementsAre("/a.dmg", "/A.dmg"));
}

TEST_F(Settings, ObserversHearOfTheChangeBeforeItAndOfTheValueBeforeItIsStored) {
  auto config = load();
  Strings story;
  const auto changes = config.objectWillChange().subscribe([&] {
    story.push_back("will change from " +
                    std::to_string(static_cast<int>(config.timeoutSeconds())));
  });
  const auto values = config.observeTimeoutSeconds([&](const double& value) {
    story.push_back("value " + std::to_string(static_cast<int>(value)) + ", stored " +
                    std::to_string(system.defaults.writes.size()));
  });
  config.setTimeoutSeconds(60);
  EXPECT_THAT(story,
              ElementsAre("value 900, stored 0", "will change from 900", "value 60, stored 0"));
  EXPECT_EQ(system.defaults.writes.size(), 1u);
}

TEST_F(Settings, OneSignalSpeaksForEveryPropertyAndEachStreamForItsOwn) {
  CountingSettings config(system.host(), system.defaults);
  int changes = 0;
  std::vector<bool> enabled, launch;
  std::vector<Strings> excluded;
  const auto any = config.objectWillChange().subscribe([&] { ++changes; });
  const auto one = config.observeIsEnabled([&](const bool& value) { enabled.push_back(value); });
  const auto two = config.observeLaunchAtLogin([&](const bool& value) { launch.push_back(value); });
  const auto three =
      config.observeExcludeList([&](const Strings& value) { excluded.push_back(value); });
  config.setIsEnabled(false);
  config.setLaunchAtLogin(true);
  config.excludeImage("/a.dmg");
  config.setTimeoutSeconds(5);
  EXPECT_EQ(changes, 4);
  EXPECT_THAT(enabled, ElementsAre(true, false));
  EXPECT_THAT(launch, ElementsAre(false, true));
  EXPECT_THAT(excluded, ElementsAre(Strings{}, Strings{"/a.dmg"}));
}

}  // namespace
}  // namespace quillmont
