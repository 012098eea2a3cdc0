#include "TFFramework/Utilities/Storage/StringT.h"

#include <gtest/gtest.h>

#include <clocale>

#include "TFFramework/Utilities/Storage/CaseTable.h"

namespace {

using TF::FromUtf8;
using TF::NarrowString;
using TF::String;
using TF::ToUtf8;

TEST(StringT, CutsByPositionAndCount) {
  struct Case {
    String result;
    const char16_t* expected;
  };
  const String text(u"abcdef");
  const Case cases[] = {
      {text.Mid(-3, 2), u"de"},    {text.Mid(-10, 8), u"abcd"},
      {text.Mid(6, 1), u""},       {text.Mid(2, 100), u"cdef"},
      {text.Mid(1, 0), u""},       {text.Mid(0, -1), u""},
      {text.Mid(2), u"cdef"},      {text.Mid(9), u""},
      {text.Left(100), u"abcdef"}, {text.Left(2), u"ab"},
      {text.Right(0), u""},        {text.Right(2), u"ef"},
      {text.Right(9), u"abcdef"},  {text.Mid(-2147483647 - 1, 2147483647), u"abcde"},
  };
  for (const Case& entry : cases) EXPECT_EQ(ToUtf8(entry.result), ToUtf8(entry.expected));
}

TEST(StringT, CopiesShareUntilOneIsWritten) {
  String first(u"abc");
  String second = first;
  EXPECT_EQ(first.GetText(), second.GetText());
  second += u"d";
  EXPECT_EQ(first, u"abc");
  EXPECT_EQ(second, u"abcd");
  EXPECT_EQ(String().GetText(), String(u"").GetText());
}

TEST(StringT, MovedFromStringIsEmptyAndUsable) {
  String first(u"abc");
  const String second = std::move(first);
  EXPECT_EQ(first.Length(), 0);
  EXPECT_EQ(first, u"");
  first += u"x";
  EXPECT_EQ(first, u"x");
  EXPECT_EQ(second, u"abc");
}

TEST(StringT, LockLeavesOtherHoldersAlone) {
  String text(u"abc");
  const String other = text;
  char16_t* raw = text.Lock(0);
  ASSERT_NE(raw, nullptr);
  EXPECT_EQ(text.Lock(0), nullptr);
  raw[0] = u'X';
  EXPECT_EQ(other, u"abc");
  const String taken = text;
  raw[1] = u'Y';
  EXPECT_EQ(taken, u"Xbc");
  EXPECT_EQ(text.Unlock(), TF::kSuccess);
  EXPECT_EQ(text.Unlock(), TF::kNothingDone);
  EXPECT_EQ(text, u"XYc");
}

TEST(StringT, LockedStringTakesTextsWithoutMovingItsBuffer) {
  String text;
  char16_t* raw = text.Lock(20);
  text = String(u"assigned");
  EXPECT_EQ(text.GetText(), raw);
  EXPECT_EQ(text.Length(), 8);
  text.Assign(u"cut off here", 3);
  EXPECT_EQ(text, u"cut");
  EXPECT_THROW(text = u"a text that is longer than the lock", TF::Exception<std::runtime_error>);
  text.Unlock();
  EXPECT_EQ(text.Length(), 3);
  EXPECT_EQ(text, u"cut");
}

TEST(StringT, UnlockOfAnEmptyTextGivesTheSharedBuffer) {
  String text(u"abc");
  text.Lock(0)[0] = u'\0';
  text.Unlock();
  EXPECT_EQ(text.GetText(), String().GetText());
}

TEST(StringT, AppendsAndInsertsAlsoFromItself) {
  String text(u"ab");
  text.Append(text);
  EXPECT_EQ(text, u"abab");
  text.Append(text.View().substr(3));
  EXPECT_EQ(text, u"ababb");
  EXPECT_EQ(text.Insert(6, u"x"), TF::kInvalidArgument);
  EXPECT_EQ(text.Insert(-1, u"x"), TF::kInvalidArgument);
  EXPECT_EQ(text.Insert(5, u"."), TF::kSuccess);
  EXPECT_EQ(text.Insert(0, text), TF::kSuccess);
  EXPECT_EQ(text, u"ababb.ababb.");
  EXPECT_EQ(text.Insert(2, u"--"), TF::kSuccess);
  EXPECT_EQ(text, u"ab--abb.ababb.");
  text.Lock(30);
  text.Append(u'!');
  EXPECT_EQ(text.Lock(0), nullptr);
  text.Unlock();
  EXPECT_EQ(text, u"ab--abb.ababb.!");
}

TEST(StringT, TrimsAndReplaces) {
  EXPECT_EQ(String(u" \t a b\r\n").TrimLeft(), u"a b\r\n");
  EXPECT_EQ(String(u" \t a b\r\n").TrimRight(), u" \t a b");
  EXPECT_EQ(String(u"  ").TrimRight(), u"");
  EXPECT_EQ(String(u"  ").TrimLeft(), u"  ");
  EXPECT_EQ(String(u"xxaxx").TrimLeft(u"x"), u"axx");
  String name(u"a/b:c");
  const String before = name;
  name.ReplaceAny(u"/:", u'_');
  EXPECT_EQ(name, u"a_b_c");
  EXPECT_EQ(before, u"a/b:c");
  name.ReplaceAny(u"_", u'\0');
  EXPECT_EQ(name, u"a_b_c");
}

TEST(StringT, ComparesByCharacterAndTakesNullAsEmpty) {
  EXPECT_TRUE(String().Equals(nullptr));
  EXPECT_FALSE(String(u"a").Equals(nullptr));
  EXPECT_FALSE(String(u"a") == u"A");
  EXPECT_TRUE(String(static_cast<const char16_t*>(nullptr)).IsEmpty());
  EXPECT_TRUE(String(u'\0').IsEmpty());
  EXPECT_TRUE(TF::EqualsIgnoreCase(u"Tessel \u00C4\u0416", u"tESSEL \u00E4\u0436"));
  EXPECT_FALSE(TF::EqualsIgnoreCase(u"Tessel", u"Tessel "));
}

TEST(StringT, CaseMappingIgnoresTheLocaleAndKeepsTheLength) {
  const char* before = std::setlocale(LC_ALL, nullptr);
  const std::string saved = before ? before : "C";
  std::setlocale(LC_ALL, "tr_TR.UTF-8");
  EXPECT_EQ(String(u"-silent\u00DF\u0131").ToUpper(), u"-SILENT\u00DF\u0131");
  EXPECT_EQ(String(u"TITLE\u0178\u00D7").ToLower(), u"title\u00FF\u00D7");
  std::setlocale(LC_ALL, saved.c_str());
  for (char32_t unit = 0; unit <= 0xFFFF; ++unit) {
    const auto character = static_cast<char16_t>(unit);
    const char16_t upper = TF::ToUpperCase(character);
    EXPECT_TRUE(upper == character || TF::ToLowerCase(upper) == character)
        << std::hex << static_cast<std::uint32_t>(unit);
  }
}

TEST(StringT, FormatsLikePrintf) {
  EXPECT_EQ(String::Format(u"%d.%d.%d.%d", 1u, 6u, 0u, 47u), u"1.6.0.47");
  EXPECT_EQ(String::Format(u"%s (%d)", String(u"Tess\u00E9l"), 2), u"Tess\u00E9l (2)");
  EXPECT_EQ(String::Format(u"%08X|%5.1f|%%|%lld", 0xBEEFu, 2.25, std::int64_t{-1} << 40),
            u"0000BEEF|  2.2|%|-1099511627776");
  EXPECT_EQ(String::Format(u"%s", String(std::u16string(20000, u'x'))).Length(), 20000);
  EXPECT_THROW(String::Format(u"%d %d", 1), TF::Exception<std::invalid_argument>);
  EXPECT_EQ(NarrowString::Format("%s=%d", "a", 1), "a=1");
}

TEST(StringT, FormatsFixedPointAndFloats) {
  EXPECT_EQ(String::FormatFixedPoint(1234, 2), u"12.34");
  EXPECT_EQ(String::FormatFixedPoint(5, 2), u".05");
  EXPECT_EQ(String::FormatFixedPoint(5, 0), u"5");
  EXPECT_EQ(String::FormatFixedPoint(-1234, 2), u"-12.34");
  EXPECT_EQ(String::FormatFloat(1.5, 2), u"1.50");
  EXPECT_EQ(String::FormatFloat(1.5, -1), u"1.500000");
  EXPECT_EQ(String::FormatFloat(2.5, 0), u"2");
}

TEST(StringT, ConvertsBetweenUtf8AndUtf16) {
  struct Case {
    std::u16string wide;
    std::string narrow;
    TFRESULT result;
  };
  const Case toNarrow[] = {
      {u"", "", TF::kSuccess},
      {u"a\u00E9\u20AC", "a\xC3\xA9\xE2\x82\xAC", TF::kSuccess},
      {u"\U0001F600", "\xF0\x9F\x98\x80", TF::kSuccess},
      {{u'a', 0xD800, u'b'},
       "a\xED\xA0\x80"
       "b",
       TF::kSuccess},
      {{u'a', 0xDC00}, "a\xED\xB0\x80", TF::kSuccess},
      {{u'a', 0xD800}, "a", TF::kFailure},
  };
  for (const Case& entry : toNarrow) {
    NarrowString narrow("before");
    const auto length = static_cast<std::int32_t>(entry.wide.size());
    EXPECT_EQ(String::ToUTF8(narrow, entry.wide.c_str(), length), entry.result) << entry.narrow;
    EXPECT_EQ(std::string(narrow.View()), entry.narrow);
  }
  const Case toWide[] = {
      {u"a\u00E9\u20AC\U0001F600", "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", TF::kSuccess},
      {{u'a', 0xD800}, "a\xED\xA0\x80", TF::kSuccess},
      {u"a\uFFFD", "a\xF4\x90\x80\x80", TF::kSuccess},
      {u"a", "a\xE2\x82", TF::kFailure},
      {u"a", "a\x80", TF::kFailure},
      {u"a", "a\xC0\x80", TF::kFailure},
      {u"a", "a\xE0\x80\x80", TF::kFailure},
      {u"a", "a\xE2(\xA1", TF::kFailure},
      {u"a", "a\xFF", TF::kFailure},
  };
  for (const Case& entry : toWide) {
    String wide(u"before");
    EXPECT_EQ(String::FromUTF8(wide, entry.narrow.c_str(), -1), entry.result) << entry.narrow;
    EXPECT_EQ(wide, std::u16string_view(entry.wide));
  }
  NarrowString narrow("before");
  EXPECT_EQ(String::ToUTF8(narrow, nullptr, -1), TF::kSuccess);
  EXPECT_EQ(narrow.GetText(), NarrowString().GetText());
  EXPECT_EQ(FromUtf8("a\xFF"
                     "b\xE2\x82"),
            u"a\uFFFDb\uFFFD\uFFFD");
}

TEST(PrintBounded, CutsAndSaysSo) {
  char16_t text[4] = {};
  EXPECT_EQ(TF::PrintBounded(text, 4, u"abc"), TF::kSuccess);
  EXPECT_EQ(TF::PrintBounded(text, 4, u"abcd"), TF::kBufferTooSmall);
  EXPECT_EQ(std::u16string(text), u"abc");
  EXPECT_EQ(TF::PrintBounded(text, 0, u"x"), TF::kInvalidArgument);
  EXPECT_EQ(TF::PrintBounded(text, 0x80000000, u"x"), TF::kInvalidArgument);
}

}  // namespace
