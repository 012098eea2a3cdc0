#include "TFFramework/Midi/MidiPortNames.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

#include "TFFramework/Utilities/Storage/CaseTable.h"

namespace {

using Names = std::vector<std::u16string>;

TF::StringArray ToArray(const Names& names) {
  TF::StringArray array;
  for (const std::u16string& name : names) array.Add(TF::String(name));
  return array;
}

Names FromArray(const TF::StringArray& array) {
  Names names;
  for (const TF::String& name : array) names.emplace_back(name.View());
  return names;
}

TEST(MidiPortNames, EqualDeviceNamesAreNumberedAtTheFirstOnesPlace) {
  const struct {
    Names devices;
    Names expected;
  } cases[] = {
      {{}, {}},
      {{u"Tessel"}, {u"Tessel"}},
      {{u"Tessel", u"Tessel"}, {u"Tessel (1)", u"Tessel (2)"}},
      {{u"A", u"B", u"A", u"C", u"A"}, {u"A (1)", u"A (2)", u"A (3)", u"B", u"C"}},
      {{u"Tessel", u"TESSEL"}, {u"Tessel", u"TESSEL"}},
      {{u"B", u"A", u"A"}, {u"B", u"A (1)", u"A (2)"}},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(FromArray(TF::MakeUniquePortNames(ToArray(test.devices))), test.expected);
  }
}

TEST(MidiPortNames, ARequestFindsNamesThatContainItAndPrefersTheWholeName) {
  const struct {
    Names names;
    std::u16string requested;
    int count;
    int index;
  } cases[] = {
      {{}, u"Tessel", 0, -1},
      {{u"Other"}, u"Tessel", 0, -1},
      {{u"Tessel Port"}, u"TES", 1, 0},
      {{u"Other", u"My tessel"}, u"TESSEL", 1, 1},
      {{u"Tessel (1)", u"Tessel (2)"}, u"Tessel", 2, 0},
      {{u"Tessel (1)", u"Tessel (2)"}, u"tessel (2)", 1, 1},
      {{u"Tessel 2", u"Tessel"}, u"tESSEL", 1, 1},
      {{u"Tessel", u"Tessel 2"}, u"Tessel", 1, 0},
      {{u"Other", u"A Tessel", u"B Tessel", u"C Tessel"}, u"Tessel", 3, 1},
      {{u"Gerät Ä"}, u"gerät ä", 1, 0},
      {{u"One", u"Two"}, u"", 2, 0},
  };
  for (const auto& test : cases) {
    std::int32_t index = 99;
    EXPECT_EQ(TF::FindPortName(ToArray(test.names), TF::String(test.requested), index), test.count);
    EXPECT_EQ(index, test.index);
  }
}

TEST(MidiPortNames, AnEndInParenthesesIsAnOrdinal) {
  const struct {
    std::u16string name;
    std::u16string base;
    int ordinal;
  } cases[] = {
      {u"Tessel", u"Tessel", 0},
      {u"Tessel (1)", u"Tessel", 0},
      {u"Tessel (2)", u"Tessel", 1},
      {u"Tessel (12)", u"Tessel", 11},
      {u"Tessel (123)", u"Tessel (123)", 0},
      {u"Tessel(3)", u"Tesse", 2},
      {u"Tessel (x)", u"Tessel", TF::kNoSuchOrdinal},
      {u"Tessel (1x)", u"Tessel", TF::kNoSuchOrdinal},
      {u"Tessel (0)", u"Tessel", TF::kNoSuchOrdinal},
      {u"Tessel ()", u"Tessel ()", 0},
      {u" (7)", u"", 6},
      {u"(7)", u"(7)", 0},
      {u"", u"", 0},
  };
  for (const auto& test : cases) {
    TF::String base;
    std::int32_t ordinal = 99;
    TF::ParsePortName(TF::String(test.name), base, ordinal);
    EXPECT_EQ(base.View(), test.base) << TF::ToUtf8(test.name);
    EXPECT_EQ(ordinal, test.ordinal) << TF::ToUtf8(test.name);
  }
}

TEST(MidiPortNames, ADeviceIsChosenByPartOrByWholeName) {
  const struct {
    Names devices;
    std::u16string name;
    bool whole;
    int device;
  } cases[] = {
      {{u"Tessel Port"}, u"TES", false, 0},
      {{u"Tessel"}, u"Tessel (1)", false, 0},
      {{u"Tessel"}, u"Tessel (2)", false, -1},
      {{u"Tessel"}, u"Tessel (x)", false, -1},
      {{u"Other", u"Tessel", u"A tessel"}, u"Tessel (2)", false, 2},
      {{u"Tessel 2", u"Tessel"}, u"Tessel", true, 1},
      {{u"Tessel 2", u"Tessel"}, u"Tessel", false, 0},
      {{u"Tessel 2", u"Tessel", u"Tessel"}, u"Tessel (1)", true, 1},
      {{u"Tessel 2", u"Tessel", u"Tessel"}, u"Tessel (2)", true, 2},
      {{u"Tessel", u"Tessel (2)"}, u"Tessel (2)", true, 1},
      {{u"TESSEL", u"tessel", u"tessel"}, u"tessel (2)", true, 2},
      {{}, u"Tessel", true, -1},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(TF::ChooseDevice(ToArray(test.devices), {TF::String(test.name), test.whole}), test.device)
        << TF::ToUtf8(test.name);
  }
}

// Whatever devices are there, each name of the list opens a device of its own, and one whose
// name is the base of the entry.
TEST(MidiPortNames, EveryUniqueNameLeadsToItsOwnDevice) {
  const unsigned seed = std::random_device{}();
  std::mt19937 random(seed);
  const Names pool = {u"Tessel", u"tessel", u"Tessel 2", u"My Tessel", u"Tess", u"T"};
  for (int round = 0; round < 300; ++round) {
    Names devices(random() % 7);
    for (std::u16string& name : devices) name = pool[random() % pool.size()];
    const TF::StringArray deviceNames = ToArray(devices);
    const TF::StringArray entries = TF::MakeUniquePortNames(deviceNames);
    std::set<std::int32_t> chosen;
    for (const TF::String& entry : entries) {
      const std::int32_t device = TF::ChooseDevice(deviceNames, {entry, true});
      ASSERT_GE(device, 0) << "seed " << seed;
      EXPECT_TRUE(chosen.insert(device).second) << "seed " << seed;
      EXPECT_EQ(entry.Find(deviceNames.GetAt(device).View()), 0) << "seed " << seed;
    }
    EXPECT_EQ(chosen.size(), devices.size()) << "seed " << seed;
  }
}

}  // namespace
