#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "TFFramework/ControlBase/FontText.h"
#include "TFFramework/ControlBase/LookDescriptor.h"
#include "TFFramework/ControlBase/VisualPart.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"
#include "TFFramework/Utilities/Graphics/Region.h"
#include "TFFramework/Utilities/Storage/StringT.h"

namespace TF {

class LRenderer;

// What a control looks like in one state, sized to its frame: parts around its client area, one that fills
// that area, and a text. It draws at the renderer's origin, where the control's frame begins.
//
// Threads: main thread.
class LLook : public virtual LRefCountedObject {
 public:
  // The font may be null until SetFont: there is no text then.
  LLook(const ConstRCPtr<LLookDescriptor>& descriptor, const RCPtr<LFont>& font);

  // Each draws what lies in dirty, a region of the renderer's target. True when something was drawn.
  virtual bool RenderNonClient(const RCPtr<LRenderer>& renderer, const Region& dirty);
  virtual bool RenderClient(const RCPtr<LRenderer>& renderer, const Region& dirty);
  // Draws the text moved back by offset; true as well when the look has none. Throws domain_error when its
  // colour is a picture or a gradient, runtime_error when it has none.
  virtual bool RenderText(const RCPtr<LRenderer>& renderer, const Region& dirty,
                          const PointT<double>& offset);

  // Whole pixels of the control's frame.
  void SetSize(const SizeT<std::int32_t>& size);
  void SetText(const String& text);
  void SetFont(const RCPtr<LFont>& font);
  void SetWrap(bool wrap);
  // In place of the one of its descriptor.
  void SetTextForeground(const RCPtr<LVisualPartDescriptor>& part);
  // Drawing stays inside of it; it lies in the look's coordinates. Nothing takes the limit away.
  void SetClipRegion(const std::optional<Region>& region) { mClipRegion = region; }
  const std::optional<Region>& GetClipRegion() const { return mClipRegion; }
  // A picture over the client area, or in place of what fills it. Null takes it away.
  void SetOverlay(const RCPtr<LVisualPart>& part, bool hidesClient);

  const SizeT<std::int32_t>& GetSize() const { return mSize; }
  const RectT<std::int32_t>& GetClientRect() const { return mClientRect; }
  // Where the text would stand in a frame of another size; empty for a look without text.
  RectT<std::int32_t> GetTextRect(std::int32_t width, std::int32_t height) const;
  // Null for a look without text.
  const RCPtr<LFontText>& GetFontText() const { return mFontText; }
  // 0xAARRGGBB of the first part that is not transparent there; LVisualPart::kNothing without one.
  std::uint32_t GetColorAtPoint(const PointT<double>& point) const;
  const LLookDescriptor& GetDescriptor() const { return *mDescriptor; }

 private:
  RectT<std::int32_t> PlaceClient() const;
  Region ToLook(LRenderer& renderer, const Region& dirty) const;
  bool DrawPart(const RCPtr<LRenderer>& renderer, const Region& dirty, const LVisualPart& part,
                const RectT<std::int32_t>& rect) const;
  void DrawLines(LRenderer& renderer, const LColor& color, const PointT<double>& offset) const;
  const LVisualPart& GetTextForeground();

  const ConstRCPtr<LLookDescriptor> mDescriptor;
  RCPtr<LVisualPartDescriptor> mGivenForeground;  // Null: the descriptor's.
  ConstRCPtr<LVisualPart> mTextForeground;        // Null until the text is first drawn.
  SizeT<std::int32_t> mSize;
  RectT<std::int32_t> mClientRect;
  std::vector<RectT<std::int32_t>> mNonClientRects;  // One for each of the next.
  std::vector<ConstRCPtr<LVisualPart>> mNonClientParts;
  ConstRCPtr<LVisualPart> mClientPart;  // Null when nothing fills the client area.
  RCPtr<LVisualPart> mOverlayPart;
  bool mOverlayHidesClient = false;
  RCPtr<LFontText> mFontText;
  PointT<std::int32_t> mTextOrigin;
  std::optional<Region> mClipRegion;
};

}  // namespace TF
