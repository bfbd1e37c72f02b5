#include "platform/macos/StandardDefaults.h"

#import <Foundation/Foundation.h>
#include <gmock/gmock.h>

#include <thread>

#include "platform/macos/strings.h"
#include "tests/support/SharedLog.h"

namespace quillmont {
namespace {

using ::testing::IsEmpty;

constexpr char kDomain[] = "com.example.Test";

/// The store of the test program itself, which is emptied after each test.
class StandardDefaultsTest : public ::testing::Test {
 protected:
  ~StandardDefaultsTest() override { defaults_.removePersistentDomain(kDomain); }

  /// Everything that the store itself knows of the program, as a fresh look finds it.
  PropertyListDictionary stored() {
    @autoreleasepool {
      [NSUserDefaults resetStandardUserDefaults];
      PropertyListDictionary result;
      NSString* const name = [[NSProcessInfo processInfo] processName];
      NSDictionary* const domain =
          [[NSUserDefaults standardUserDefaults] persistentDomainForName:name];
      for (NSString* key in domain) {
        if (![key hasPrefix:@"test"]) continue;
        result.emplace_back(utf8String(key), *defaults_.object(utf8String(key)));
      }
      return result;
    }
  }

  testing::SharedLog log_;
  StandardDefaults defaults_{kDomain, log_};
};

TEST_F(StandardDefaultsTest, StartsWithNothing) {
  EXPECT_EQ(defaults_.object("test.a"), std::nullopt);
  EXPECT_EQ(defaults_.stringArray("test.a"), std::nullopt);
  EXPECT_THAT(stored(), IsEmpty());
}

TEST_F(StandardDefaultsTest, KindsReachTheStoreAndComeBackFromIt) {
  const PropertyList strings{PropertyListArray{"/a b.dmg", "/\u78c1\u76d8.dmg", ""}};
  defaults_.setDouble("test.real", 900.0);
  defaults_.setBool("test.on", true);
  defaults_.setBool("test.off", false);
  defaults_.setObject("test.integer", std::int64_t{1});
  defaults_.setObject("test.string", "text");
  defaults_.setObject("test.strings", strings);
  EXPECT_EQ(stored().size(), 6u);
  EXPECT_EQ(defaults_.object("test.real"), PropertyList(900.0));
  EXPECT_EQ(defaults_.object("test.on"), PropertyList(true));
  EXPECT_EQ(defaults_.object("test.off"), PropertyList(false));
  EXPECT_EQ(defaults_.object("test.integer"), PropertyList(std::int64_t{1}));
  EXPECT_EQ(defaults_.object("test.string"), PropertyList("text"));
  EXPECT_EQ(defaults_.object("test.strings"), strings);
  EXPECT_EQ(defaults_.stringArray("test.strings"),
            (std::vector<std::string>{"/a b.dmg", "/\u78c1\u76d8.dmg", ""}));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(StandardDefaultsTest, StringArrayIsNothingForAnyOtherValue) {
  defaults_.setObject("test.mixed", PropertyListArray{"a", std::int64_t{1}});
  defaults_.setObject("test.string", "a");
  defaults_.setObject("test.empty", PropertyListArray{});
  EXPECT_EQ(defaults_.stringArray("test.mixed"), std::nullopt);
  EXPECT_EQ(defaults_.stringArray("test.string"), std::nullopt);
  EXPECT_EQ(defaults_.stringArray("test.empty"), std::vector<std::string>());
}

TEST_F(StandardDefaultsTest, ALaterWriteTakesThePlaceOfAnEarlierOne) {
  defaults_.setObject("test.a", "old");
  defaults_.setBool("test.a", true);
  EXPECT_EQ(stored(), (PropertyListDictionary{{"test.a", true}}));
}

TEST_F(StandardDefaultsTest, RemovingTheDomainForgetsMemoryAndStore) {
  defaults_.setBool("test.a", true);
  defaults_.setObject("test.b", PropertyListArray{"x"});
  defaults_.removePersistentDomain(kDomain);
  EXPECT_EQ(defaults_.object("test.a"), std::nullopt);
  EXPECT_THAT(stored(), IsEmpty());
  EXPECT_EQ(defaults_.object("test.b"), std::nullopt);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(StandardDefaultsTest, RemovingADomainThatWasNeverWrittenIsSilent) {
  defaults_.removePersistentDomain(kDomain);
  defaults_.removePersistentDomain("com.example.Nobody");
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(StandardDefaultsTest, RemovingAnotherDomainChangesNothing) {
  defaults_.setBool("test.a", true);
  defaults_.removePersistentDomain("com.example.Other");
  EXPECT_EQ(stored(), (PropertyListDictionary{{"test.a", true}}));
}

TEST_F(StandardDefaultsTest, AValueThatCannotBeKeptIsLoggedAndLeavesTheOldOne) {
  defaults_.setBool("test.a", true);
  defaults_.setObject("test.a", PropertyListDate{"tomorrow"});
  EXPECT_EQ(defaults_.object("test.a"), PropertyList(true));
  EXPECT_THAT(log_.lines(),
              ::testing::ElementsAre("Failed to write settings: a date that is none"));
}

TEST_F(StandardDefaultsTest, ThreadsWriteAndReadSideBySide) {
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([this, number] {
      const auto key = "test.key" + std::to_string(number);
      for (std::int64_t i = 0; i < 10; ++i) {
        defaults_.setObject(key, i);
        EXPECT_EQ(defaults_.object(key), PropertyList(i));
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(stored().size(), 4u);
}

}  // namespace
}  // namespace quillmont
