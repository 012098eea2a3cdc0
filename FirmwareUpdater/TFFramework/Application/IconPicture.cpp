#include "TFFramework/Application/IconPicture.h"

#include "Platform/Pixel.h"
#include "TFFramework/Utilities/Storage/Resources.h"

namespace TF {

Platform::PixelView IconPicture::GetView() const {
  return {mPicture.mPixels.data(), static_cast<std::int32_t>(mPicture.mWidth),
          static_cast<std::int32_t>(mPicture.mHeight), mPicture.mWidth * sizeof(std::uint32_t)};
}

std::optional<IconPicture> LoadIconResource(LIconGroup::Kind kind, std::u16string_view name,
                                            std::int32_t side) {
  const auto type = kind == LIconGroup::Kind::kIcon ? u"GROUP_ICON" : u"GROUP_CURSOR";
  const auto bytes = FindResource(type, name);
  const auto group = bytes ? LIconGroup::Read(*bytes) : std::nullopt;
  if (!group || group->GetKind() != kind) return std::nullopt;
  const LIconGroup::Entry& entry = group->FindEntry(side);
  auto picture = LIconGroup::Decode(entry);
  if (!picture) return std::nullopt;
  for (std::uint32_t& pixel : picture->mPixels) pixel = Platform::Premultiply(pixel);
  return IconPicture{std::move(*picture), entry.mHotSpot};
}

}  // namespace TF
