#pragma once

#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Renderer/Stencil.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// What drawing in a context depends on, saved and restored as a whole.
struct RenderState {
  // The clip that clips nothing.
  static constexpr RectT<double> kNoClip = {-5000000136282112.0, -5000000136282112.0, 10000000272564224.0,
                                            10000000272564224.0};

  // Where the point 0, 0 of the present drawing coordinates lies in the target.
  PointT<double> mOrigin;
  // In present drawing coordinates.
  RectT<double> mClip = kNoClip;
  // Controls and looks multiply it as they descend. No drawing operation reads it: alpha reaches the
  // pixels through colours and pictures alone.
  float mAlpha = 1.0F;
  // A PushClip set mStencil in this state.
  bool mStencilActive = false;
  RCPtr<LStencil> mStencil;
};

}  // namespace TF
