#include "TFFramework/ControlBase/AttributeValues.h"

#include <gtest/gtest.h>

#include <string>

#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {
namespace {

template <class Value>
struct Case {
  std::u16string mText;
  Value mValue;
};

TEST(AttributeValuesTest, OnlyExactlyTrueIsTrue) {
  const Case<bool> cases[] = {{u"True", true},   {u"true", false}, {u"TRUE", false}, {u"", false},
                              {u" True", false}, {u"1", false},    {u"True ", false}};
  for (const auto& [text, value] : cases) EXPECT_EQ(ParseBool(text), value) << ToUtf8(text);
}

TEST(AttributeValuesTest, IntegersReadFourHexadecimalDigitsOrDecimal) {
  const Case<std::int32_t> cases[] = {
      {u"0x0009", 9},
      {u"0x7C04", 0x7C04},
      {u"0x7c04", 0x7C04},
      {u"0xFFFF", 0xFFFF},
      {u"0x00007C04", 0},
      {u"0x12345", 0x1234},
      {u"0x1g", 1},
      {u"0x", 0},
      {u"0X0009", 0},
      {u" 0x0009", 0},
      {u"-0x5", 0},
      {u"42", 42},
      {u"  +42", 42},
      {u"\t\n-42abc", -42},
      {u"-", 0},
      {u"+-5", 0},
      {u"", 0},
      {u"abc", 0},
      {u"5.9", 5},
      {u"2147483647", 2147483647},
      {u"2147483648", 2147483647},
      {u"-2147483648", -2147483647 - 1},
      {u"-2147483649", -2147483647 - 1},
      {u"99999999999999999999999999", 2147483647},
      {u"-99999999999999999999999999", -2147483647 - 1},
      {u"\u0661", 0},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(ParseInt(text), value) << ToUtf8(text);
}

TEST(AttributeValuesTest, FloatsAreDecimalAndFinite) {
  const Case<float> cases[] = {
      {u"8.25", 8.25F}, {u" \t+0.5", 0.5F}, {u"-0.5", -0.5F},    {u".5", 0.5F},    {u"5.", 5.0F},
      {u"1e2", 100.0F}, {u"1e", 1.0F},      {u"2E-1x", 0.2F},    {u"1.5.5", 1.5F}, {u"0,5", 0.0F},
      {u"nan", 0.0F},   {u"-inf", 0.0F},    {u"infinity", 0.0F}, {u"1e39", 0.0F},  {u"-1e400", 0.0F},
      {u"0x10", 0.0F},  {u"--5", 0.0F},     {u"+-5", 0.0F},      {u"", 0.0F},      {u".", 0.0F},
      {u"e5", 0.0F},    {u"\u0661", 0.0F},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(ParseFloat(text), value) << ToUtf8(text);
}

TEST(AttributeValuesTest, ALongNumberIsReadWhole) {
  EXPECT_EQ(ParseFloat(std::u16string(1 << 20, u'0') + u"1.5"), 1.5F);
  EXPECT_EQ(ParseInt(std::u16string(1 << 20, u'0') + u"15"), 15);
}

TEST(AttributeValuesTest, ColorsCountTheirDigits) {
  constexpr float kFull = 255 * 0.003921569F;
  const Case<LColor> cases[] = {
      {u"0xFF006991", {0, 0.4117647F, 0.5686275F, kFull}},
      {u"0XFF006991", {0, 0.4117647F, 0.5686275F, kFull}},
      {u"ff006991", {0, 0.4117647F, 0.5686275F, kFull}},
      {u"0xFF0000", {kFull, 0, 0, 0}},
      {u"0000FF", {0, 0, kFull, 0}},
      {u"0xFF", {0, 0, 0, kFull}},
      {u"FF", {0, 0, 0, kFull}},
      {u"0x", {}},
      {u"", {}},
      {u"FFF", {}},
      {u"FFFFFFFFF", {}},
      {u"FF00699G", {}},
      {u"0x0xFFFFFF", {}},
  };
  for (const auto& [text, value] : cases) {
    const LColor color = ParseColor(text);
    EXPECT_NEAR(color.mRed, value.mRed, 1e-6) << ToUtf8(text);
    EXPECT_NEAR(color.mGreen, value.mGreen, 1e-6) << ToUtf8(text);
    EXPECT_NEAR(color.mBlue, value.mBlue, 1e-6) << ToUtf8(text);
    EXPECT_NEAR(color.mAlpha, value.mAlpha, 1e-6) << ToUtf8(text);
  }
}

}  // namespace
}  // namespace TF
