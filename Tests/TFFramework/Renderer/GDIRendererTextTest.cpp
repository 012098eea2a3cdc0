#include <gtest/gtest.h>

#include <string>

#include "Tests/TFFramework/Renderer/ClockApplication.h"
#include "Tests/TFFramework/Renderer/RendererRig.h"

namespace {

using TF::FontMetrics;
using TF::LFont;
using TF::LRenderer;
using TF::RCPtr;
using TF::String;
using Rect = TF::RectT<float>;

RCPtr<LFont> Arial(float size, std::int32_t style = LFont::kRegular) {
  return LFont::Get(u"Arial", size, style);
}

TEST(GDIRendererText, MetricsComeFromTheUnhintedDesign) {
  RendererRig rig;
  const struct {
    float mSize;
    FontMetrics mMetrics;
  } cases[] = {{8.25F, {13, -10, 3}}, {12, {19, -15, 4}}, {14.25F, {22, -18, 5}}, {0, {}}, {-3, {}}};
  for (const auto& item : cases) {
    EXPECT_EQ(rig.mRenderer->GetFontMetrics(Arial(item.mSize)), item.mMetrics) << item.mSize;
  }
  EXPECT_EQ(rig.mRenderer->GetFontMetrics(nullptr), FontMetrics());
  const RCPtr<LFont> unknown = LFont::Get(u"No Such Family At All", 12, LFont::kRegular);
  EXPECT_GT(rig.mRenderer->GetFontMetrics(unknown).mHeight, 12) << "the sans serif family stands in";
  EXPECT_GT(rig.mRenderer->GetFontMetrics(LFont::Get(u"", 1e30F, LFont::kRegular)).mHeight, 100);
}

TEST(GDIRendererText, WidthCountsEveryBlankAndRoomOnBothSides) {
  RendererRig rig;
  const auto measure = [&](const String& text) { return rig.mRenderer->MeasureText(text, Arial(12)); };
  EXPECT_EQ(measure(u""), Rect());
  EXPECT_EQ(rig.mRenderer->MeasureText(u"x", Arial(0)), Rect());
  const Rect one = measure(u"MMMMMMMMMM");
  EXPECT_EQ(one.mX, 0);
  EXPECT_EQ(one.mY, -15);
  EXPECT_EQ(one.mHeight, 19);
  // Ten times 0.833 of 16 pixels, and 3.
  EXPECT_NEAR(one.mWidth, 137, 4);
  EXPECT_GT(measure(u"MMMMMMMMMM  ").mWidth, one.mWidth + 5);
  EXPECT_GT(measure(u"  MMMMMMMMMM").mWidth, one.mWidth + 5);
  EXPECT_GT(measure(u" ").mWidth, 3);
  EXPECT_GT(rig.mRenderer->MeasureText(u"MMMMMMMMMM", Arial(12, LFont::kBold)).mWidth, one.mWidth - 4);
}

TEST(GDIRendererText, TheWidthOfATextIsThatOfWhatIsDrawn) {
  RendererRig rig({600, 60});
  for (const float size : {8.25F, 12.0F, 14.25F}) {
    for (const char16_t* text : {u"HHHHHHHHHHHHHHHHHHHH", u"Illi will fill it till"}) {
      const Rect measured = rig.mRenderer->MeasureText(text, Arial(size));
      rig.Draw([&](LRenderer& renderer) { renderer.DrawText(text, Arial(size), {10, 10}, Color(kRed)); });
      const auto ink = rig.mWindow.GetInk();
      EXPECT_GE(ink.mX, 11);
      EXPECT_LE(ink.mX, 14);
      EXPECT_LE(static_cast<float>(ink.GetRight()), 10 + measured.mWidth);
      EXPECT_GE(static_cast<float>(ink.GetRight()), 10 + measured.mWidth - 6) << size;
    }
  }
}

TEST(GDIRendererText, ThePointIsTheTopLeftOfTheLine) {
  RendererRig rig({60, 60});
  // Level tops and bottoms: the ink is from the cap height down to the base line.
  rig.Draw([&](LRenderer& renderer) { renderer.DrawText(u"H", Arial(12), {10, 20}, Color(kRed)); });
  const auto ink = rig.mWindow.GetInk();
  // 20 - 1 + 0.905 * 16 is the base, 0.729 * 16 the height of the letter.
  EXPECT_NEAR(ink.GetBottom(), 33.5, 1);
  EXPECT_NEAR(ink.mY, 21.8, 1);
  std::uint32_t darkest = 0;
  for (std::int32_t y = ink.mY; y < ink.GetBottom(); ++y) {
    for (std::int32_t x = ink.mX; x < ink.GetRight(); ++x) {
      const std::uint32_t pixel = rig.mWindow.At(x, y);
      EXPECT_EQ(pixel & 0xFFFF, 0U) << "gray smoothing, no colour fringes";
      darkest = std::max(darkest, pixel);
    }
  }
  EXPECT_GT(darkest >> 24, 0xE0U);
}

TEST(GDIRendererText, ClipOriginAndAlphaHoldForText) {
  RendererRig rig({100, 40});
  rig.Draw([&](LRenderer& renderer) {
    renderer.PushClip({20, 10, 30, 12}, {20, 10, 30, 12}, nullptr, true);
    renderer.DrawText(u"MMMMMMMMMMMM", Arial(20), {-8, -8}, Color(0x80FFFFFF));
    renderer.RestoreState();
  });
  const auto ink = rig.mWindow.GetInk();
  EXPECT_GE(ink.mX, 20);
  EXPECT_GE(ink.mY, 10);
  EXPECT_LE(ink.GetRight(), 50);
  EXPECT_LE(ink.GetBottom(), 22);
  EXPECT_GT(rig.mWindow.CountInk(), 20);
  for (std::int32_t x = 20; x < 50; ++x) EXPECT_LE(rig.mWindow.At(x, 15) >> 24, 0x81U);
}

// The sign for a missing glyph is a box with a line over its whole width.
bool LooksLikeABox(const MemoryWindow& window) {
  const auto ink = window.GetInk();
  for (std::int32_t x = ink.mX; x < ink.GetRight(); ++x) {
    if (window.At(x, ink.mY) == 0) return false;
  }
  return true;
}

TEST(GDIRendererText, ACharacterThatTheFontLacksComesFromAnother) {
  RendererRig rig({80, 80});
  const auto draw = [&](const char16_t* text) {
    rig.Draw([&](LRenderer& renderer) { renderer.DrawText(text, Arial(30), {10, 10}, Color(kRed)); });
  };
  draw(u"\uE123");
  EXPECT_TRUE(LooksLikeABox(rig.mWindow)) << "no font has this one";
  draw(u"\u2603");
  EXPECT_GT(rig.mWindow.CountInk(), 50);
  EXPECT_FALSE(LooksLikeABox(rig.mWindow)) << "DejaVu has the snowman, Liberation has not";
}

TEST(GDIRendererText, MoreTextsThanAreKeptAreMeasuredAlikeEachTime) {
  RendererRig rig;
  for (int round = 0; round < 2; ++round) {
    for (std::size_t length = 1; length < 300; ++length) {
      const String text(std::u16string(length, u'0'));
      // A digit is 0.556 of 16 pixels, rounded to 9.
      ASSERT_EQ(rig.mRenderer->MeasureText(text, Arial(12)).mWidth, static_cast<float>(length * 9 + 3));
    }
    for (char16_t character = u'a'; character < u'k'; ++character) {
      ASSERT_GT(rig.mRenderer->MeasureText(String(std::u16string(16000, character)), Arial(12)).mWidth,
                40000);
    }
  }
}

TEST(GDIRendererText, NoClipHoweverTightLetsInkThroughOrChangesIt) {
  RendererRig whole({90, 60});
  RendererRig cut({90, 60});
  const RCPtr<LFont> font = LFont::Get(u"Times New Roman", 21.3F, LFont::kBoldItalic);
  const auto draw = [&](LRenderer& renderer) {
    renderer.DrawText(u"fjÅf", font, {20.4F, 12.7F}, Color(kRed));
  };
  whole.Draw(draw);
  const auto ink = whole.mWindow.GetInk();
  for (std::int32_t less = -4; less <= 4; ++less) {
    for (std::int32_t side = 0; side < 4; ++side) {
      TF::RectT<std::int32_t> clip = ink;
      if (side == 0) clip.mX += less;
      if (side == 1) clip.mY += less;
      if (side % 2 == 0) clip.mWidth -= less;
      if (side % 2 == 1) clip.mHeight -= less;
      cut.Draw([&](LRenderer& renderer) {
        renderer.SetClipRect({double(clip.mX), double(clip.mY), double(clip.mWidth), double(clip.mHeight)});
        draw(renderer);
        renderer.SetClipRect(TF::RenderState::kNoClip);
      });
      for (std::int32_t y = 0; y < 60; ++y) {
        for (std::int32_t x = 0; x < 90; ++x) {
          const bool inside = TF::Region(clip).Contains({x, y});
          ASSERT_EQ(cut.mWindow.At(x, y), inside ? whole.mWindow.At(x, y) : 0U) << x << ", " << y;
        }
      }
    }
  }
}

TEST(GDIRendererText, TextThatIsNoneIsDrawnWithoutHarm) {
  RendererRig rig({200, 40});
  const std::u16string broken[] = {
      std::u16string(1, 0xD800),
      std::u16string(1, 0xDC00),
      std::u16string(2, 0xDBFF),
      std::u16string(u"a\0b", 3),
      u"\xFFFF\xFFFE",
      u"\u202E\u202D\u0300",
      u"line\nnext\tand\r",
      std::u16string(100000, u'W'),
      u"日本語",
  };
  rig.Draw([&](LRenderer& renderer) {
    for (const std::u16string& text : broken) {
      EXPECT_GE(renderer.MeasureText(String(text), Arial(12)).mWidth, 0);
      renderer.DrawText(String(text), Arial(12), {0, 0}, Color(kRed));
    }
  });
  EXPECT_GT(rig.mWindow.CountInk(), 100);
}

TEST(LFontTest, ThereIsOneFontPerDescription) {
  const RCPtr<LFont> font = Arial(9.5F);
  EXPECT_EQ(Arial(9.5F), font);
  EXPECT_EQ(LFont::Get(String(std::u16string(u"Ari") + u"al"), 9.5F, LFont::kRegular), font);
  EXPECT_FALSE(Arial(9) == font);
  EXPECT_FALSE(Arial(9.5F, LFont::kBold) == font);
  EXPECT_FALSE(LFont::Get(u"arial", 9.5F, LFont::kRegular) == font);
  EXPECT_EQ(font->GetName(), u"Arial");
}

TEST(LFontTest, AFontIsMeasuredOnceThereIsARenderer) {
  const RCPtr<LFont> font = Arial(12.75F);
  EXPECT_EQ(font->GetHeight(), 0);
  const auto application = TF::MakeRC<ClockApplication>();
  EXPECT_EQ(font->GetAscent(), 0);
  application->mRenderer = RendererRig().mRenderer;
  EXPECT_EQ(font->GetHeight(), 20);
  EXPECT_EQ(font->GetAscent(), -16);
  application->mRenderer = nullptr;
  EXPECT_EQ(font->GetDescent(), 4) << "and keeps the answer";
}

TEST(GDIRendererText, ALongerTextIsNeverNarrower) {
  RendererRig rig;
  for (const float size : {8.0F, 1000.0F, 1e30F}) {
    const auto font = TF::LFont::Get(u"Arial", size, TF::LFont::kRegular);
    float widest = 0;
    for (const std::size_t length : {100U, 1000U, 2000U, 20000U}) {
      const float width = rig.mRenderer->MeasureText(std::u16string(length, u'M'), font).mWidth;
      EXPECT_GE(width, widest) << size << ' ' << length;
      widest = width;
    }
    EXPECT_EQ(rig.mRenderer->GetFontMetrics(font),
              rig.mRenderer->GetFontMetrics(TF::LFont::Get(u"Arial", std::min(size, 1000.0F), 0)));
  }
}

}  // namespace
