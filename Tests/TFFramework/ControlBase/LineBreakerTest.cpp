#include "TFFramework/ControlBase/LineBreaker.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Lines = std::vector<std::u16string>;

// Every character is one pixel wide.
Lines Break(std::u16string_view text, float width) {
  const auto lines =
      TF::BreakLines(text, width, [](std::u16string_view part) { return static_cast<float>(part.size()); });
  return {lines.begin(), lines.end()};
}

TEST(LineBreaker, BreaksAtBlanksBehindHyphensAndInsideLongWords) {
  struct Case {
    std::u16string_view mText;
    float mWidth;
    Lines mLines;
  };
  const Case cases[] = {
      {u"", 5, {u""}},
      {u"one", 3, {u"one"}},
      {u"one two three", 7, {u"one two", u"three"}},
      {u"one two three", 6, {u"one", u"two", u"three"}},
      {u"one\n\ntwo", 9, {u"one", u"", u"two"}},
      {u"one two\nthree", 5, {u"one", u"two", u"three"}},
      {u"abcdefgh", 3, {u"abc", u"def", u"gh"}},
      {u"abcdefgh", 0, {u"a", u"b", u"c", u"d", u"e", u"f", u"g", u"h"}},
      {u"abcdefgh ij", 3, {u"abc", u"def", u"gh", u"ij"}},
      {u"in abcdefgh", 4, {u"in", u"abcd", u"efgh"}},
      {u"in-out again", 4, {u"in-", u"out", u"agai", u"n"}},
      {u"go in-and-out", 6, {u"go in-", u"and-", u"out"}},
      {u"go in-and-out", 10, {u"go in-and-", u"out"}},
      {u"one   two", 3, {u"one", u" ", u"two"}},
      {u"one ", 3, {u"one"}},
      {u" one", 3, {u" on", u"e"}},
      {u"\U0001F3B9\U0001F3B9", 3, {u"\U0001F3B9", u"\U0001F3B9"}},
      {u"\U0001F3B9\U0001F3B9", 1, {u"\U0001F3B9", u"\U0001F3B9"}},
  };
  for (const Case& entry : cases) {
    EXPECT_EQ(Break(entry.mText, entry.mWidth), entry.mLines)
        << std::string(entry.mText.begin(), entry.mText.end()) << " in " << entry.mWidth;
  }
}

TEST(LineBreaker, ALongTextIsNotMeasuredOverAndOver) {
  for (const std::u16string& text :
       {std::u16string(20000, u'-'), std::u16string(20000, u'a'), std::u16string(20000, u' ')}) {
    std::size_t measured = 0;
    const auto lines = TF::BreakLines(text, 100, [&measured](std::u16string_view part) {
      measured += part.size();
      return static_cast<float>(part.size());
    });
    EXPECT_GE(lines.size(), 190U);
    EXPECT_LT(measured, text.size() * 20);
    measured = 0;
    TF::BreakLines(text, -8, [&measured](std::u16string_view part) {
      measured += part.size();
      return static_cast<float>(part.size());
    });
    EXPECT_EQ(measured, 0U);  // Controls without a size yet break their texts, too.
  }
}

}  // namespace
