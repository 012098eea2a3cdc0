#include "Tools/SkinSheet/SkinSheet.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "TFFramework/ControlBase/Look.h"
#include "TFFramework/Renderer/AutoClip.h"
#include "TFFramework/Renderer/Gdi/GDIRenderContextInfo.h"

using namespace TF;

namespace {

constexpr std::int32_t kWidth = 1240;
constexpr std::int32_t kMargin = 12;
constexpr std::int32_t kNameColumn = 210;
constexpr std::int32_t kGap = 14;
constexpr std::int32_t kLabelHeight = 16;
constexpr SizeT<std::int32_t> kDefaultSize{120, 24};
constexpr SizeT<std::int32_t> kLargestSize{380, 120};
// A control of this size grows with its text or its children.
constexpr double kPlaceholderSide = 10;
constexpr LColor kGround{0.93F, 0.94F, 0.95F, 1};
constexpr LColor kInk{0.15F, 0.17F, 0.2F, 1};
constexpr LColor kFrame{0.78F, 0.8F, 0.83F, 1};

const RCPtr<LFont>& LabelFont() {
  static const RCPtr<LFont> font = LFont::Get(u"Arial", 8.25F, LFont::kRegular);
  return font;
}

// A picture that fills a look is cut at the size in which it is meant to be seen.
SizeT<std::int32_t> NaturalSize(const LLookList& list) {
  for (std::int32_t slot = 0; slot < list.GetCount(); ++slot) {
    const ConstRCPtr<LLookDescriptor> look = list.GetAt(slot);
    if (look && look->mHasText) return kDefaultSize;
    if (look && look->mClientPart && !look->mClientPart->mPart->mImageFile.IsEmpty())
      return look->mClientPart->mPart->mSize;
  }
  return kDefaultSize;
}

std::int32_t SideOf(const LLayoutDescriptor& layout, LayoutAxis axis, std::int32_t natural,
                    std::int32_t largest) {
  const LayoutSize& size = layout.Axis(axis).mSize;
  if (size.mReference != SizeReference::kSelf || size.mAbs <= kPlaceholderSide) return natural;
  return std::min(RoundToInt32(size.mAbs), largest);
}

RectT<float> ToFloat(const RectT<std::int32_t>& rect) {
  return {static_cast<float>(rect.mX), static_cast<float>(rect.mY), static_cast<float>(rect.mWidth),
          static_cast<float>(rect.mHeight)};
}

Platform::Picture ToPicture(const Platform::PixelView& view) {
  Platform::Picture picture{
      static_cast<std::uint32_t>(view.mWidth), static_cast<std::uint32_t>(view.mHeight), {}};
  const std::size_t rowLength = view.mStride / sizeof(std::uint32_t);
  for (std::size_t y = 0; y < picture.mHeight; ++y) {
    const std::uint32_t* const row = view.mPixels + y * rowLength;
    picture.mPixels.insert(picture.mPixels.end(), row, row + picture.mWidth);
  }
  return picture;
}

}  // namespace

SkinSheet::SkinSheet(const RCPtr<LRenderer>& renderer, const SkinContents& skin)
    : mRenderer(renderer), mHeight(kMargin) {
  for (const auto& [name, list] : skin.mLookLists) {
    Row row{name, list, kDefaultSize, LabelFont(), mHeight};
    for (const RCPtr<LControlDescriptor>& node : skin.mSkins) FindUser(row, *node);
    mHeight += LinesOf(row) * (row.mSize.mHeight + kLabelHeight) + kGap;
    mRows.push_back(row);
  }
}

// The last control that has the list decides, so that the screen's own come before the templates.
void SkinSheet::FindUser(Row& row, const LControlDescriptor& control) const {
  for (const RCPtr<LControlDescriptor>& child : control.mSubControls) FindUser(row, *child);
  if (!control.mSkin || !control.mLayout || control.mSkin->mLookList != row.mList) return;
  const SizeT<std::int32_t> natural = NaturalSize(*row.mList);
  row.mSize = {SideOf(*control.mLayout, LayoutAxis::kX, natural.mWidth, kLargestSize.mWidth),
               SideOf(*control.mLayout, LayoutAxis::kY, natural.mHeight, kLargestSize.mHeight)};
  const LSkinDescriptor& skin = *control.mSkin;
  const bool ownFont = !skin.mFontName.IsEmpty() && skin.mFontSize > 0;
  row.mFont =
      ownFont ? LFont::Get(skin.mFontName, skin.mFontSize, std::max(skin.mFontStyle, 0)) : LabelFont();
}

std::int32_t SkinSheet::SlotsPerLine(const Row& row) const {
  return std::max(1, (kWidth - kNameColumn - kMargin) / (row.mSize.mWidth + kGap));
}

std::int32_t SkinSheet::LinesOf(const Row& row) const {
  const std::int32_t slots = SlotsPerLine(row);
  return std::max(1, (row.mList->GetCount() + slots - 1) / slots);
}

Platform::Picture SkinSheet::Draw() {
  const RectT<std::int32_t> area{0, 0, kWidth, mHeight};
  RCPtr<LRenderContextInfo> context;
  if (Failed(mRenderer->CreateRenderContext(area, nullptr, true, context)))
    throw std::runtime_error("no surface to draw on");
  context->mRegion = Region(area);
  mRenderer->RenderStart(context);
  mRenderer->FillRect(ToFloat(area), kGround, true);
  for (const Row& row : mRows) DrawRow(row);
  mRenderer->RenderFinish(context);
  return ToPicture(dynamic_cast<LGDIRenderContextInfo&>(*context).mBackBuffer->GetCanvas().GetPixels());
}

void SkinSheet::DrawRow(const Row& row) {
  mRenderer->DrawText(row.mName, LabelFont(), {kMargin, static_cast<float>(row.mTop + kLabelHeight)}, kInk);
  const std::int32_t perLine = SlotsPerLine(row);
  for (std::int32_t slot = 0; slot < row.mList->GetCount(); ++slot) {
    const std::int32_t x = kNameColumn + slot % perLine * (row.mSize.mWidth + kGap);
    const std::int32_t y = row.mTop + slot / perLine * (row.mSize.mHeight + kLabelHeight);
    const String label = String::Format(u"%d", slot);
    mRenderer->DrawText(label, LabelFont(), {static_cast<float>(x), static_cast<float>(y)}, kInk);
    const RectT<std::int32_t> frame{x - 1, y + kLabelHeight - 1, row.mSize.mWidth + 1, row.mSize.mHeight + 1};
    mRenderer->DrawRect(ToFloat(frame), kFrame, 1);
    const ConstRCPtr<LLookDescriptor> look = row.mList->GetAt(slot);
    if (look) DrawLook(look, row, {static_cast<double>(x), static_cast<double>(y + kLabelHeight)});
  }
}

void SkinSheet::DrawLook(const ConstRCPtr<LLookDescriptor>& descriptor, const Row& row,
                         const PointT<double>& place) {
  LLook look(descriptor, row.mFont);
  look.SetSize(row.mSize);
  look.SetText(u"Sample");
  const RectT<double> frame{place.mX, place.mY, static_cast<double>(row.mSize.mWidth),
                            static_cast<double>(row.mSize.mHeight)};
  const CAutoClip clip(mRenderer, frame, frame, nullptr, true);
  const Region all(RectT<std::int32_t>{0, 0, kWidth, mHeight});
  look.RenderClient(mRenderer, all);
  look.RenderNonClient(mRenderer, all);
  look.RenderText(mRenderer, all, {0, 0});
}
