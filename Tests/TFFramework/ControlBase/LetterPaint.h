#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/Control.h"
#include "TFFramework/Renderer/Renderer.h"

namespace TF {

// Fills a control with the first letter of its name in the lowest byte, so that a picture tells whose each
// pixel is.
inline TFRESULT PaintLetter(LControl& control, LRenderer& renderer) {
  const std::uint32_t shade = 0xFF000000U | static_cast<std::uint32_t>(control.GetName()[0]);
  renderer.FillRect({-1000, -1000, 3000, 3000}, LColor::FromPacked(shade), true);
  return kSuccess;
}

}  // namespace TF
