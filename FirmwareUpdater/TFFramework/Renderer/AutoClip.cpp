#include "TFFramework/Renderer/AutoClip.h"

#include <stdexcept>

#include "TFFramework/ObjectBase/Exception.h"

namespace TF {

CAutoClip::CAutoClip(const RCPtr<LRenderer>& renderer, const ClipFlavor& flavor) : mRenderer(renderer) {
  switch (flavor.mFlavor) {
    case ClipFlavor::kSaveState:
      mRenderer->SaveState();
      break;
    case ClipFlavor::kPushClip:
      mRenderer->PushClip(flavor.mFrame, flavor.mClipRect, flavor.mStencil, flavor.mRelative);
      break;
    case ClipFlavor::kPushOrigin:
      mRenderer->PushOrigin(flavor.mOffset);
      break;
    default:
      Throw<std::runtime_error>("Unknown PushClip flavor", "TF::CAutoClip::CAutoClip");
  }
}

CAutoClip::CAutoClip(const RCPtr<LRenderer>& renderer, const RectT<double>& frame,
                     const RectT<double>& clipRect, const RCPtr<LStencil>& stencil, bool relative)
    : mRenderer(renderer) {
  mRenderer->PushClip(frame, clipRect, stencil, relative);
}

CAutoClip::~CAutoClip() {
  mRenderer->RestoreState();
}

}  // namespace TF
