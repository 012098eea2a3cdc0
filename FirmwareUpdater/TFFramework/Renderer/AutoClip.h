#pragma once

#include <cstdint>

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Renderer/Renderer.h"
#include "TFFramework/Renderer/Stencil.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// What a CAutoClip does to the renderer's state.
struct ClipFlavor {
  static constexpr std::int32_t kSaveState = 0;
  static constexpr std::int32_t kPushClip = 1;
  static constexpr std::int32_t kPushOrigin = 2;

  std::int32_t mFlavor = kSaveState;
  // Of kPushClip.
  RectT<double> mFrame;
  RectT<double> mClipRect;
  RCPtr<LStencil> mStencil;
  bool mRelative = true;
  // Of kPushOrigin.
  PointT<double> mOffset;
};

// Changes the state of a renderer for the life of this object. Drawing code restores states in no
// other way.
class CAutoClip {
 public:
  // Throws runtime_error for an unknown flavor.
  CAutoClip(const RCPtr<LRenderer>& renderer, const ClipFlavor& flavor);
  CAutoClip(const RCPtr<LRenderer>& renderer, const RectT<double>& frame, const RectT<double>& clipRect,
            const RCPtr<LStencil>& stencil, bool relative);
  ~CAutoClip();
  CAutoClip(const CAutoClip&) = delete;
  CAutoClip& operator=(const CAutoClip&) = delete;

 private:
  const RCPtr<LRenderer> mRenderer;
};

}  // namespace TF
