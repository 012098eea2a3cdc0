#include "TFFramework/Utilities/Storage/StringArray.h"

#include <gtest/gtest.h>

#include <functional>

#include "TFFramework/Utilities/Storage/ArrayBuffer.h"
#include "TFFramework/Utilities/Storage/ArrayUtils.h"

namespace {

using TF::StringArray;

TEST(StringArray, FindsTheFirstEqualTextFromStartOn) {
  const StringArray names{u"Gain", u"gain", u"", u"Ärger", u"Gain"};
  const struct {
    const char16_t* text;
    bool caseSensitive;
    std::int32_t start, index;
  } cases[] = {
      {u"Gain", true, 0, 0},  {u"Gain", true, 1, 4},    {u"gain", true, 0, 1},   {u"GAIN", true, 0, -1},
      {u"GAIN", false, 0, 0}, {u"GAIN", false, 2, 4},   {u"ärger", false, 0, 3}, {u"Gai", false, 0, -1},
      {u"", true, 0, 2},      {nullptr, true, 0, 2},    {u"", false, 3, -1},     {u"Gain", true, 5, -1},
      {u"Gain", true, 9, -1}, {u"Gainer", true, 0, -1}, {u"Gain", true, -3, 0},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(names.Find(row.text, row.caseSensitive, row.start), row.index)
        << TF::ToUtf8(row.text ? row.text : u"null") << " from " << row.start;
  }
  EXPECT_EQ(names.Find(names[4], false, 0), 0);
}

TEST(StringArray, FindsNarrowTextsToo) {
  const TF::StringArrayT<char, char16_t> names{"in", "Out"};
  EXPECT_EQ(names.Find("OUT", false), 1);
  EXPECT_EQ(names.Find("OUT"), -1);
}

TEST(StringArray, SharesTheTextsOfItsCopies) {
  StringArray names{u"one", u"two"};
  StringArray copy = names;
  names.RemoveItems(0, 1);
  names.Add(u"three");
  EXPECT_EQ(copy.GetCount(), 2);
  EXPECT_EQ(copy[1].GetText(), names[0].GetText());
}

std::string TextOf(const std::function<void()>& function) {
  try {
    function();
  } catch (const TF::ExceptionBase& exception) {
    return exception.What();
  }
  return "no exception";
}

TEST(ArrayUtils, SortsTheGivenRangeOnly) {
  StringArray names{u"z", u"c", u"b", u"a", u"A"};
  TF::ArrayUtils::Sort(names, 1, 3, std::less<>());
  EXPECT_EQ(names[0], u"z");
  EXPECT_EQ(names[1], u"a");
  EXPECT_EQ(names[3], u"c");
  EXPECT_EQ(names[4], u"A");
}

TEST(ArrayUtils, GivesTheOrderAsIndicesAndLeavesTheArray) {
  const TF::ArrayBuffer<int> values{50, 40, 10, 30, 20};
  TF::ArrayBuffer<std::int32_t> indices{9};
  TF::ArrayUtils::SortIndecies(indices, values, 1, 3, std::less<>());
  EXPECT_EQ(std::vector<int>(indices.begin(), indices.end()), (std::vector<int>{2, 3, 1}));
  TF::ArrayUtils::SortIndecies(indices, values, 5, 0, std::less<>());
  EXPECT_EQ(indices.GetCount(), 0);
}

TEST(ArrayUtils, RefusesARangePastTheEnd) {
  TF::ArrayBuffer<int> values{3, 2, 1};
  TF::ArrayBuffer<std::int32_t> indices;
  const struct {
    std::int32_t start, count;
    bool sortThrows, indicesThrow;
  } cases[] = {
      {0, 3, false, false}, {1, 3, true, true},  {-1, 2, true, true},         {3, 0, false, false},
      {9, 1, false, true},  {9, 0, false, true}, {2, 0x7FFFFFFF, true, true}, {0, -1, false, true},
  };
  const std::string sortText = "Out of Range : TF::ArrayUtils::Sort : ";
  const std::string indicesText = "Out of Range : TF::ArrayUtils::SortIndecies : ";
  const std::string none = "no exception";
  for (const auto& row : cases) {
    SCOPED_TRACE(testing::Message() << row.start << ", " << row.count);
    const auto sort = [&] { TF::ArrayUtils::Sort(values, row.start, row.count, std::less<>()); };
    const auto index = [&] {
      TF::ArrayUtils::SortIndecies(indices, values, row.start, row.count, std::less<>());
    };
    EXPECT_EQ(TextOf(sort).find(row.sortThrows ? sortText : none), 0u);
    EXPECT_EQ(TextOf(index).find(row.indicesThrow ? indicesText : none), 0u);
  }
}

}  // namespace
