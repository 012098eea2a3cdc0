#include "TFFramework/Utilities/Graphics/Bitmap.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "TFFramework/Utilities/Graphics/BitmapData.h"
#include "TFFramework/Utilities/Storage/Resources.h"
#include "Tests/Support/PngWriter.h"
#include "Tests/Support/TemporaryFolder.h"

namespace {

using TestSupport::Bytes;
using TF::LBitmap;
using TF::LBitmapData;
using TF::LockMode;
using TF::MakeRC;
using TF::RCPtr;

// Four by three; the pixel at x, y is 0x8000yyxx.
constexpr std::uint32_t kWidth = 4;
constexpr std::uint32_t kHeight = 3;

constexpr std::uint32_t SheetPixel(int x, int y) {
  return 0x80000000U | static_cast<std::uint32_t>(y << 8 | x);
}

Bytes SheetFile(std::uint32_t difference = 0) {
  std::vector<std::uint32_t> pixels;
  for (int y = 0; y < static_cast<int>(kHeight); ++y) {
    for (int x = 0; x < static_cast<int>(kWidth); ++x) pixels.push_back(SheetPixel(x, y) ^ difference);
  }
  return TestSupport::WriteArgbPng(kWidth, kHeight, pixels);
}

// Moves the working folder for a while.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::filesystem::path& folder) { std::filesystem::current_path(folder); }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  ~WorkingFolder() { std::filesystem::current_path(mFormer); }

 private:
  const std::filesystem::path mFormer = std::filesystem::current_path();
};

class LBitmapTest : public testing::Test {
 protected:
  LBitmapTest() { TF::SetResources(mResources); }
  ~LBitmapTest() override {
    TF::SetResources({});
    EXPECT_EQ(TF::LRefCountedObject::GetLiveCount(), mLiveBefore) << "no picture outlives its users";
  }

  TF::String PathOf(std::string_view name) const { return TF::String(mFolder.InnerEntry(name)); }
  void Write(std::string_view name, const Bytes& bytes) const {
    mFolder.WriteFile(name, std::string(bytes.begin(), bytes.end()));
  }

  static std::int64_t CountObjects() {
    const TF::String empty;  // Its buffer is made once and kept.
    return TF::LRefCountedObject::GetLiveCount();
  }

  const std::int64_t mLiveBefore = CountObjects();
  const TestSupport::TemporaryFolder mFolder;
  const Bytes mSheet = SheetFile();
  const Bytes mBroken = Bytes(mSheet.begin(), mSheet.end() - 20);
  const TF::Resource mResources[4] = {{u"GDIPLUS", u"SHEET_2X_PNG", mSheet},
                                      {u"GDIPLUS", u"BROKEN_PNG", mBroken},
                                      {u"GDIPLUS", u"EMPTY_PNG", {}},
                                      {u"TFXML", u"TEXT_PNG", mSheet}};
};

std::uint32_t PixelOf(const LBitmap& bitmap, int x, int y) {
  return bitmap.GetPixel(x, y).ToPacked();
}

TEST_F(LBitmapTest, APathWithTheMarkNamesAResource) {
  for (const char16_t* path : {u"::Sheet_2x.png", u"::SHEET_2X_PNG", u"::sheet.2x.png"}) {
    const auto bitmap = LBitmap::LoadBitmap(path);
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->GetWidth(), 4);
    EXPECT_EQ(bitmap->GetHeight(), 3);
    EXPECT_EQ(PixelOf(*bitmap, 3, 2), SheetPixel(3, 2));
    EXPECT_EQ(bitmap->GetPath(), path) << "as given";
  }
}

TEST_F(LBitmapTest, WhatCannotBeDecodedIsNull) {
  Write("broken.png", mBroken);
  Write("empty.png", {});
  for (const char16_t* path :
       {u"", u"::", u"::Missing.png", u"::Broken.png", u"::Empty.png", u"::Text.png", u"::/Sheet_2x.png"}) {
    EXPECT_FALSE(LBitmap::LoadBitmap(path)) << TF::ToUtf8(path);
  }
  for (const char* name : {"broken.png", "empty.png", "missing.png", "."}) {
    EXPECT_FALSE(LBitmap::LoadBitmap(PathOf(name))) << name;
  }
}

TEST_F(LBitmapTest, APathIsLoadedOnceWhateverItsCase) {
  Write("Sheet.png", mSheet);
  const auto file = LBitmap::LoadBitmap(PathOf("Sheet.png"));
  ASSERT_TRUE(file);
  EXPECT_EQ(LBitmap::LoadBitmap(PathOf("sheet.PNG")), file);
  const auto resource = LBitmap::LoadBitmap(u"::Sheet_2x.png");
  ASSERT_TRUE(resource);
  EXPECT_EQ(LBitmap::LoadBitmap(u"::SHEET_2X.PNG"), resource);
  EXPECT_FALSE(resource == file);
}

TEST_F(LBitmapTest, EveryWayToAFileLeadsToOnePicture) {
  std::filesystem::create_directory(mFolder.Entry("inner"));
  Write("Picture.png", mSheet);
  const WorkingFolder inside(mFolder.Entry("inner"));
  const RCPtr<LBitmap> picture = LBitmap::LoadBitmap(PathOf("Picture.png"));
  ASSERT_TRUE(picture);
  for (const char16_t* path : {u"../Picture.png", u"..\\Picture.png", u".\\..\\.\\picture.PNG",
                               u"..\\inner\\..\\Picture.png", u"..\\\\Picture.png"}) {
    EXPECT_EQ(LBitmap::LoadBitmap(path), picture) << TF::ToUtf8(path);
  }
  for (const char* name : {"./Picture.png", "inner/../Picture.png", "inner/.././/Picture.png"}) {
    EXPECT_EQ(LBitmap::LoadBitmap(PathOf(name)), picture) << name;
  }
}

TEST_F(LBitmapTest, ARelativePathNamesAnotherFileInAnotherFolder) {
  constexpr std::uint32_t kDifference = 0x40;
  std::filesystem::create_directory(mFolder.Entry("inner"));
  Write("picture.png", mSheet);
  Write("inner/picture.png", SheetFile(kDifference));
  const WorkingFolder outside(mFolder.Path());
  const auto outer = LBitmap::LoadBitmap(u"picture.png");
  ASSERT_TRUE(outer);
  const WorkingFolder inside(mFolder.Entry("inner"));
  const auto inner = LBitmap::LoadBitmap(u"picture.png");
  ASSERT_TRUE(inner);
  EXPECT_EQ(PixelOf(*outer, 0, 0), SheetPixel(0, 0));
  EXPECT_EQ(PixelOf(*inner, 0, 0), SheetPixel(0, 0) ^ kDifference);
}

TEST_F(LBitmapTest, AForgottenPictureIsDecodedAgain) {
  constexpr std::uint32_t kDifference = 0x40;
  Write("sheet.png", SheetFile());
  auto bitmap = LBitmap::LoadBitmap(PathOf("sheet.png"));
  ASSERT_TRUE(bitmap);
  auto part = bitmap->CreateSubBitmap(1, 1, 1, 1);
  Write("sheet.png", SheetFile(kDifference));
  bitmap = nullptr;
  bitmap = LBitmap::LoadBitmap(PathOf("sheet.png"));
  EXPECT_EQ(PixelOf(*bitmap, 0, 0), SheetPixel(0, 0)) << "a sub-bitmap keeps its parent";
  bitmap = nullptr;
  part = nullptr;
  bitmap = LBitmap::LoadBitmap(PathOf("sheet.png"));
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(PixelOf(*bitmap, 0, 0), SheetPixel(0, 0) ^ kDifference);
}

TEST_F(LBitmapTest, APictureThatFailedIsTriedAgain) {
  Write("late.png", mBroken);
  EXPECT_FALSE(LBitmap::LoadBitmap(PathOf("late.png")));
  Write("late.png", mSheet);
  EXPECT_TRUE(LBitmap::LoadBitmap(PathOf("late.png")));
}

TEST_F(LBitmapTest, ASubBitmapIsAWindowIntoTheTopPicture) {
  const auto sheet = LBitmap::LoadBitmap(u"::Sheet_2x.png");
  ASSERT_TRUE(sheet);
  const auto part = sheet->CreateSubBitmap(1, 0, 3, 3);
  const auto inner = part->CreateSubBitmap(1, 2, 1.5, 1.4);
  EXPECT_EQ(inner->GetParent(), sheet);
  EXPECT_EQ(inner->GetImage(), sheet->GetImage());
  EXPECT_EQ(inner->GetX(), 2);
  EXPECT_EQ(inner->GetY(), 2);
  EXPECT_EQ(inner->GetWidth(), 2) << "halves away from zero";
  EXPECT_EQ(inner->GetHeight(), 1);
  EXPECT_EQ(PixelOf(*inner, 0, 0), SheetPixel(2, 2));
  EXPECT_EQ(PixelOf(*inner, -1, -2), SheetPixel(1, 0)) << "outside of the window, inside the image";
  EXPECT_EQ(inner->GetPath(), u"");
}

TEST_F(LBitmapTest, ASubBitmapWithoutASizeIsTheWhole) {
  const auto sheet = LBitmap::LoadBitmap(u"::Sheet_2x.png");
  ASSERT_TRUE(sheet);
  const auto part = sheet->CreateSubBitmap(1, 1, 2, 2);
  const double sizes[][2] = {{0, 5}, {5, 0}, {-1, -1}, {0.9, 2}};
  for (const auto& [width, height] : sizes) {
    const auto whole = part->CreateSubBitmap(7, 8, width, height);
    EXPECT_EQ(whole->GetX(), 1);
    EXPECT_EQ(whole->GetY(), 1);
    EXPECT_EQ(whole->GetWidth(), 2);
    EXPECT_EQ(whole->GetHeight(), 2);
  }
}

TEST_F(LBitmapTest, PixelsOutsideOfTheImageAreZero) {
  constexpr std::int32_t kFar = 2147483647;
  const auto sheet = LBitmap::LoadBitmap(u"::Sheet_2x.png");
  ASSERT_TRUE(sheet);
  const auto part = sheet->CreateSubBitmap(kFar, kFar, kFar, kFar);
  const std::int32_t points[][2] = {{-1, 0}, {0, -1}, {4, 0}, {0, 3}, {kFar, kFar}, {-kFar - 1, 0}};
  for (const auto& [x, y] : points) {
    EXPECT_EQ(sheet->GetPixel(x, y), TF::LColor()) << x << ", " << y;
    EXPECT_EQ(part->GetPixel(x, y).mAlpha > 0, false) << x << ", " << y;
  }
}

TEST_F(LBitmapTest, ACloneHasPixelsOfItsOwn) {
  const auto sheet = LBitmap::LoadBitmap(u"::Sheet_2x.png");
  ASSERT_TRUE(sheet);
  const auto clone = sheet->CreateSubBitmap(1, 1, 3, 2)->Clone();
  ASSERT_TRUE(clone);
  EXPECT_EQ(clone->GetX(), 0);
  EXPECT_EQ(clone->GetWidth(), 3);
  EXPECT_EQ(clone->GetHeight(), 2);
  EXPECT_FALSE(clone->GetParent());
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 3; ++x) EXPECT_EQ(PixelOf(*clone, x, y), SheetPixel(x + 1, y + 1));
  }
  *clone->LockPixels()->GetPixels() = 0xFFFFFFFF;
  EXPECT_EQ(PixelOf(*sheet, 1, 1), SheetPixel(1, 1));
}

TEST_F(LBitmapTest, WhatReachesBeyondTheImageIsNeitherClonedNorLocked) {
  const auto sheet = LBitmap::LoadBitmap(u"::Sheet_2x.png");
  ASSERT_TRUE(sheet);
  const double rectangles[][4] = {{-1, 0, 2, 2}, {0, -1, 2, 2}, {0, 0, 5, 1},
                                  {0, 0, 1, 4},  {3, 2, 2, 1},  {1e12, 1e12, 1e12, 1e12}};
  for (const auto& [x, y, width, height] : rectangles) {
    const auto part = sheet->CreateSubBitmap(x, y, width, height);
    EXPECT_FALSE(part->Clone()) << x << ", " << y;
    EXPECT_FALSE(LBitmapData(part, LockMode::kRead).IsLocked()) << x << ", " << y;
  }
}

TEST_F(LBitmapTest, AViewShowsItsPicturesRectangle) {
  const auto sheet = LBitmap::LoadBitmap(u"::Sheet_2x.png");
  ASSERT_TRUE(sheet);
  LBitmapData data(sheet->CreateSubBitmap(1, 1, 2, 2), LockMode::kRead);
  ASSERT_TRUE(data.IsLocked());
  EXPECT_EQ(data.GetWidth(), 2);
  EXPECT_EQ(data.GetHeight(), 2);
  EXPECT_EQ(data.GetStride(), 16) << "of the whole image, in bytes";
  EXPECT_EQ(data.GetPixels()[0], SheetPixel(1, 1));
  EXPECT_EQ(*data.GetPixelAddress(1, 1), SheetPixel(2, 2));
}

TEST_F(LBitmapTest, LockingASubBitmapShowsTheParent) {
  const auto sheet = LBitmap::LoadBitmap(u"::Sheet_2x.png");
  ASSERT_TRUE(sheet);
  const auto part = sheet->CreateSubBitmap(1, 1, 2, 2);
  const auto data = part->LockPixels();
  EXPECT_EQ(data->GetWidth(), 4);
  EXPECT_EQ(data->GetHeight(), 3);
  EXPECT_EQ(*data->GetPixelAddress(part->GetX(), part->GetY()), SheetPixel(1, 1));
}

TEST_F(LBitmapTest, AnImageHasOneViewAtATime) {
  const auto sheet = LBitmap::LoadBitmap(u"::Sheet_2x.png");
  ASSERT_TRUE(sheet);
  auto first = sheet->LockPixels();
  const auto second = sheet->CreateSubBitmap(0, 0, 1, 1)->LockPixels();
  EXPECT_TRUE(first->IsLocked());
  EXPECT_FALSE(second->IsLocked());
  EXPECT_EQ(second->GetPixelAddress(0, 0), nullptr);
  first = nullptr;
  EXPECT_TRUE(sheet->LockPixels()->IsLocked());
}

TEST_F(LBitmapTest, AViewTakesNoPixelsFromElsewhere) {
  const auto sheet = LBitmap::LoadBitmap(u"::Sheet_2x.png");
  const int source = 0;
  try {
    const LBitmapData data(sheet, LockMode::kWrite, &source);
    FAIL() << "must throw";
  } catch (const std::domain_error& error) {
    EXPECT_TRUE(std::string(error.what()).starts_with("Domain Error : TF::LBitmapData::LBitmapData : "))
        << error.what();
  }
  EXPECT_TRUE(sheet->LockPixels()->IsLocked());
}

}  // namespace
