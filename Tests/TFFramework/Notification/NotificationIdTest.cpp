#include "TFFramework/Notification/NotificationId.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace TF {
namespace {

std::u16string NumberedName(int number) {
  const std::string digits = std::to_string(number);
  return u"NID_TEST_" + std::u16string(digits.begin(), digits.end());
}

TEST(NotificationIdTest, EmptyNamesGiveNoId) {
  EXPECT_EQ(GetNotificationID(nullptr), nullptr);
  EXPECT_EQ(GetNotificationID(u""), nullptr);
}

TEST(NotificationIdTest, EqualTextGivesOneIdWhereverItStands) {
  std::u16string name = u"NID_TEST_TEXT";
  const NotificationId id = GetNotificationID(name.c_str());
  EXPECT_NE(id, name.c_str());
  EXPECT_EQ(std::u16string(id), u"NID_TEST_TEXT");
  name[0] = u'X';
  EXPECT_EQ(GetNotificationID(u"NID_TEST_TEXT"), id);
  EXPECT_EQ(GetNotificationID(id), id);
  EXPECT_NE(GetNotificationID(name.c_str()), id);
}

TEST(NotificationIdTest, CaseMakesAnotherId) {
  EXPECT_NE(GetNotificationID(u"NID_TEST_CASE"), GetNotificationID(u"NID_TEST_Case"));
}

TEST(NotificationIdTest, IdsKeepTheirAddressWhileTheTableGrows) {
  constexpr int kNames = 500;
  std::vector<NotificationId> ids;
  for (int number = 0; number < kNames; ++number) {
    ids.push_back(GetNotificationID(NumberedName(number).c_str()));
  }
  for (int number = 0; number < kNames; ++number) {
    EXPECT_EQ(std::u16string(ids[number]), NumberedName(number));
    EXPECT_EQ(GetNotificationID(NumberedName(number).c_str()), ids[number]);
  }
}

TEST(NotificationIdTest, ThreadsThatNameTheSameAtOnceGetTheSameIds) {
  constexpr int kThreads = 4;
  constexpr int kNames = 200;
  std::vector<std::vector<NotificationId>> ids(kThreads);
  std::vector<std::thread> threads;
  for (auto& own : ids) {
    threads.emplace_back([&own] {
      for (int number = 0; number < kNames; ++number) {
        own.push_back(GetNotificationID((NumberedName(number) + u"_AT_ONCE").c_str()));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const auto& own : ids) EXPECT_EQ(own, ids[0]);
}

}  // namespace
}  // namespace TF
