#pragma once

#include <cstdint>

#include "TFFramework/ControlBase/ControlParams.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/ObjectBase/RefCountedObject.h"
#include "TFFramework/ObjectBase/Result.h"
#include "TFFramework/Utilities/Graphics/Geometry.h"

namespace TF {

// What a window tells the controls in it.
//
// Threads: main thread.
class UITarget : public virtual LRefCountedObject {
 public:
  virtual void MouseEnter() = 0;
  virtual TFRESULT MouseMove(const RCPtr<LPointWithModifiersParam>& param) = 0;
  virtual TFRESULT MouseDown(const RCPtr<LMouseButtonParam>& param) = 0;
  virtual TFRESULT MouseUp(const RCPtr<LMouseButtonParam>& param) = 0;
  virtual void MouseLeave() = 0;
  virtual TFRESULT CaptureMouse(std::uint32_t button, std::int32_t x, std::int32_t y) = 0;
  virtual TFRESULT ReleaseMouse() = 0;
  virtual void KeyDown(const RCPtr<LKeyParam>& param) = 0;
  virtual TFRESULT MouseWheel(const RCPtr<LMouseWheelParam>& param) = 0;
  virtual void ParentResized(const SizeT<double>& size) = 0;
  virtual bool CanLoseFocus() = 0;
  virtual void LoseFocus() = 0;
};

}  // namespace TF
