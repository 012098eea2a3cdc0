#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "App/Resources/ProgramResources.h"
#include "TFFramework/ControlBase/ControlFactory.h"
#include "TFFramework/Utilities/Graphics/Bitmap.h"
#include "TFFramework/Utilities/Graphics/IconGroup.h"
#include "TFFramework/Utilities/Storage/FormatArgument.h"
#include "TFFramework/Utilities/Storage/Resources.h"
#include "Tests/TFFramework/ControlBase/LookCanvas.h"

// The pictures that are linked into the program, and what its looks make of them.

namespace TF {
namespace {

constexpr double kReadableText = 4.5;     // Least contrast of a text and what it stands on.
constexpr double kVisibleShape = 3;       // Least contrast of a shape that says something.
constexpr std::int32_t kTextHeight = 13;  // Pixels, of a line in the skin's font.

// The screen, and a place of its head and of its body.
constexpr std::int32_t kScreenWidth = 400, kScreenHeight = 425;
constexpr PointT<std::int32_t> kHead{200, 60}, kBody{200, 300};

constexpr LColor kNothing{};
constexpr std::uint32_t kSkinLanguage = 0x0409;

// The looks of a list at the size at which the program shows them.
struct ListSize {
  const char16_t* mList;
  SizeT<std::int32_t> mSize;
};

const ListSize kTextsWithGrounds[] = {{u"Button", {120, 31}},
                                      {u"Button.Quiet", {120, 31}},
                                      {u"ComboMenu", {60, 24}},
                                      {u"MenuItem", {200, 23}},
                                      {u"ToolTip", {100, 21}}};
const char16_t* const kTextsWithoutGrounds[] = {u"Title", u"Secondary", u"Body", u"Strong", u"Trailing"};

class EmbeddedLooksTest : public testing::Test {
 protected:
  void SetUp() override {
    RegisterProgramResources();
    ASSERT_EQ(mFactory->LoadResources(u"::", kSkinLanguage), kSuccess);
  }
  void TearDown() override { SetResources({}); }

  const SkinContents& Contents() const { return mFactory->GetSkinContents(); }
  // An empty slot gives a look that draws nothing.
  ConstRCPtr<LLookDescriptor> Look(std::u16string_view list, std::int32_t slot = 0) const {
    const auto& look = (*Contents().mLookLists.find(list)->second)[slot];
    EXPECT_TRUE(look) << ToUtf8(list) << ' ' << slot;
    return look ? look : mEmptyLook;
  }
  LookCanvas Screen() const {
    LookCanvas canvas(kScreenWidth, kScreenHeight, kNothing);
    canvas.Paint(Look(u"Screen"));
    return canvas;
  }
  LColor Ground(const PointT<std::int32_t>& place) const { return Screen().At(place.mX, place.mY); }

  const RCPtr<LControlFactory> mFactory = MakeRC<LControlFactory>(u"Tessel");
  const RCPtr<LLookDescriptor> mEmptyLook = MakeRC<LLookDescriptor>();
};

LColor TextColorOf(const LLookDescriptor& look) {
  LColor color = look.TextForegroundPart->mColorizer->mColor;
  color.mAlpha *= look.TextForegroundPart->mColorizerAlphaMod;
  return color;
}

std::int32_t EdgeOf(float rel, std::int32_t abs, std::int32_t length) {
  return static_cast<std::int32_t>(rel * static_cast<float>(length)) + abs;
}

// The least contrast of the look's text and any pixel that its one line may lie on.
double LeastContrast(const LLookDescriptor& look, const LookCanvas& canvas) {
  const std::int32_t width = canvas.GetWidth(), height = canvas.GetHeight();
  const std::int32_t top = EdgeOf(look.TextTopRel, look.TextTopAbs, height);
  const std::int32_t air = EdgeOf(look.TextBottomRel, look.TextBottomAbs, height) - top - kTextHeight;
  const std::int32_t first = top + static_cast<std::int32_t>(static_cast<float>(air) * look.TextVAlign);
  double least = 21;
  for (std::int32_t y = first; y < first + kTextHeight; ++y) {
    for (std::int32_t x = EdgeOf(look.TextLeftRel, look.TextLeftAbs, width);
         x < EdgeOf(look.TextRightRel, look.TextRightAbs, width); ++x) {
      least = std::min(least, ContrastOf(TextColorOf(look), canvas.At(x, y)));
    }
  }
  return least;
}

// The share of pixels that differ in a channel by more than a tenth.
double DifferenceOf(const LookCanvas& left, const LookCanvas& right) {
  const auto differs = [](float one, float other) { return std::abs(one - other) > 0.1F; };
  int count = 0;
  for (std::int32_t y = 0; y < left.GetHeight(); ++y) {
    for (std::int32_t x = 0; x < left.GetWidth(); ++x) {
      const LColor &one = left.At(x, y), &other = right.At(x, y);
      count += differs(one.mRed, other.mRed) || differs(one.mGreen, other.mGreen) ||
               differs(one.mBlue, other.mBlue);
    }
  }
  return static_cast<double>(count) / (left.GetWidth() * left.GetHeight());
}

TEST_F(EmbeddedLooksTest, EveryPictureLiesInItsSheet) {
  for (const auto& [name, part] : Contents().mParts) {
    if (part->mImageFile.IsEmpty()) continue;
    const auto sheet = LBitmap::LoadBitmap(part->mImageFile);
    ASSERT_TRUE(sheet) << ToUtf8(part->mImageFile);
    const RectT<std::int32_t>& rect = part->mImageRect;
    EXPECT_TRUE(rect.mX >= 0 && rect.mY >= 0 && rect.mWidth > 0 && rect.mHeight > 0) << ToUtf8(name);
    EXPECT_LE(rect.GetRight(), sheet->GetWidth()) << ToUtf8(name);
    EXPECT_LE(rect.GetBottom(), sheet->GetHeight()) << ToUtf8(name);
  }
}

TEST_F(EmbeddedLooksTest, NoTwoPicturesOverlap) {
  for (const auto& [name, part] : Contents().mParts) {
    for (const auto& [otherName, other] : Contents().mParts) {
      if (!(name < otherName) || part->mImageFile.IsEmpty() || part->mImageFile != other->mImageFile)
        continue;
      const RectT<std::int32_t>&a = part->mImageRect, &b = other->mImageRect;
      EXPECT_TRUE(a.GetRight() <= b.mX || b.GetRight() <= a.mX || a.GetBottom() <= b.mY ||
                  b.GetBottom() <= a.mY)
          << ToUtf8(name) << " and " << ToUtf8(otherName);
    }
  }
}

// Where it is empty the pointer goes through to the channel.
TEST_F(EmbeddedLooksTest, AThumbAnswersToThePointerEverywhere) {
  for (const ListSize& thumb : {ListSize{u"Thumb.V", {14, 50}}, ListSize{u"Thumb.H", {50, 14}}}) {
    for (std::int32_t slot = 0; slot < 3; ++slot) {
      LookCanvas canvas(thumb.mSize.mWidth, thumb.mSize.mHeight, kNothing);
      canvas.Paint(Look(thumb.mList, slot));
      for (std::int32_t y = 0; y < canvas.GetHeight(); ++y) {
        for (std::int32_t x = 0; x < canvas.GetWidth(); ++x) {
          ASSERT_GE(canvas.At(x, y).ToPacked() >> 24, 1U) << slot << ": " << x << ' ' << y;
        }
      }
    }
  }
}

// Looks are painted over what was there before, so that what shines through would pile up.
TEST_F(EmbeddedLooksTest, TheScreenIsCovered) {
  const LookCanvas canvas = Screen();
  for (std::int32_t y = 0; y < kScreenHeight; ++y) {
    for (std::int32_t x = 0; x < kScreenWidth; ++x) ASSERT_EQ(canvas.At(x, y).mAlpha, 1) << x << ' ' << y;
  }
}

TEST_F(EmbeddedLooksTest, TextsAreReadableOnTheirGrounds) {
  const LColor ground = Ground(kBody);
  for (const auto& [list, size] : kTextsWithGrounds) {
    for (std::int32_t slot = 0; slot < Contents().mLookLists.find(list)->second->GetCount(); ++slot) {
      const auto look = Look(list, slot);
      if (!look->mHasText) continue;
      EXPECT_EQ(TextColorOf(*look).mAlpha, 1) << ToUtf8(look->mName);
      LookCanvas canvas(size.mWidth, size.mHeight, ground);
      canvas.Paint(look);
      EXPECT_GE(LeastContrast(*look, canvas), kReadableText) << ToUtf8(look->mName);
    }
  }
  for (const char16_t* list : kTextsWithoutGrounds) {
    const LLookDescriptor& look = *Look(list);
    EXPECT_EQ(TextColorOf(look).mAlpha, 1) << ToUtf8(look.mName);
    for (const auto& place : {kHead, kBody}) {
      EXPECT_GE(ContrastOf(TextColorOf(look), Ground(place)), kReadableText) << ToUtf8(look.mName);
    }
  }
}

// Three of them share one place.
TEST_F(EmbeddedLooksTest, LabelsHaveNoGroundOfTheirOwn) {
  for (const char16_t* list : kTextsWithoutGrounds) {
    EXPECT_FALSE(Look(list)->mClientPart) << ToUtf8(list);
    EXPECT_EQ(Look(list)->mNonClientParts.GetCount(), 0) << ToUtf8(list);
  }
}

TEST_F(EmbeddedLooksTest, EveryStateOfAButtonHasAFaceOfItsOwn) {
  constexpr std::int32_t kStates = 7;  // Of a button that is off.
  constexpr double kPlain = 0.03;      // Of all its pixels.
  const LColor ground = Ground(kBody);
  for (const char16_t* list : {u"Button", u"Button.Quiet"}) {
    std::vector<LookCanvas> faces;
    for (std::int32_t slot = 0; slot < kStates; ++slot) {
      LookCanvas& face = faces.emplace_back(120, 31, ground);
      face.Paint(Look(list, slot));
    }
    for (std::size_t i = 0; i < faces.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        EXPECT_GE(DifferenceOf(faces[i], faces[j]), kPlain) << ToUtf8(list) << ' ' << i << ' ' << j;
      }
    }
  }
}

TEST_F(EmbeddedLooksTest, TheBarCanBeReadWhereverItEnds) {
  constexpr std::int32_t kWidth = 360, kHeight = 60, kBarTop = 35, kBarHeight = 14;
  const LColor ground = Ground(kBody);
  LookCanvas track(kWidth, kHeight, ground), fill(kWidth, kBarHeight, ground);
  track.Paint(Look(u"ProgressBar"));
  fill.Paint(Look(u"ProgressFill"));
  constexpr std::int32_t x = kWidth / 2, y = kBarHeight / 2;
  EXPECT_GE(ContrastOf(track.At(x, kBarTop), ground), kVisibleShape) << "the edge of the empty bar";
  EXPECT_GE(ContrastOf(fill.At(x, y), track.At(x, kBarTop + y)), kVisibleShape);
  for (std::int32_t row = 0; row < kBarTop; ++row) {
    for (std::int32_t column = 0; column < kWidth; ++column) {
      ASSERT_EQ(track.At(column, row), ground) << "the texts stand above the bar";
    }
  }
}

TEST_F(EmbeddedLooksTest, TheIconHasItsTenSizes) {
  const auto bytes = FindResource(u"GROUP_ICON", u"128");
  ASSERT_TRUE(bytes);
  const auto icon = LIconGroup::Read(*bytes);
  ASSERT_TRUE(icon);
  EXPECT_EQ(icon->GetKind(), LIconGroup::Kind::kIcon);
  std::vector<std::int32_t> sizes;
  for (const LIconGroup::Entry& entry : icon->GetEntries()) {
    sizes.push_back(entry.mSize.mWidth);
    EXPECT_TRUE(LIconGroup::Decode(entry)) << entry.mSize.mWidth;
  }
  EXPECT_EQ(sizes, (std::vector<std::int32_t>{16, 20, 24, 32, 40, 48, 64, 96, 128, 256}));
}

TEST_F(EmbeddedLooksTest, BothCursorsPointWithTheTipOfTheirArrow) {
  for (const char16_t* name : {u"102", u"103"}) {
    const auto bytes = FindResource(u"GROUP_CURSOR", name);
    ASSERT_TRUE(bytes);
    const auto cursor = LIconGroup::Read(*bytes);
    ASSERT_TRUE(cursor);
    EXPECT_EQ(cursor->GetKind(), LIconGroup::Kind::kCursor);
    for (const LIconGroup::Entry& entry : cursor->GetEntries()) {
      const auto picture = LIconGroup::Decode(entry);
      ASSERT_TRUE(picture);
      const auto alpha = [&picture](std::int32_t x, std::int32_t y) {
        return picture->mPixels.at(static_cast<std::size_t>(y) * picture->mWidth +
                                   static_cast<std::size_t>(x)) >>
               24;
      };
      EXPECT_GE(alpha(entry.mHotSpot.mX, entry.mHotSpot.mY), 0x80U) << entry.mSize.mWidth;
      EXPECT_EQ(alpha(0, 0), 0U) << entry.mSize.mWidth;
    }
  }
}

}  // namespace
}  // namespace TF
