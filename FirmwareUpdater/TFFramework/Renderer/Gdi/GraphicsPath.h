#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "Platform/Canvas.h"
#include "TFFramework/ObjectBase/RCPtr.h"
#include "TFFramework/Utilities/Graphics/Polyline.h"

namespace TF {

// What a renderer keeps of a polyline. One polyline can be drawn in several ways, so the way belongs
// to it.
class LGraphicsPath : public virtual LRefCountedObject {
 public:
  LGraphicsPath(Platform::CanvasPathKind kind, std::unique_ptr<Platform::CanvasPath> path)
      : mKind(kind), mPath(std::move(path)) {}

  static std::int32_t Key(const PolylineT<float>& polyline) { return polyline.mHandle.Get(); }

  Platform::CanvasPathKind GetKind() const { return mKind; }
  const Platform::CanvasPath& GetPath() const { return *mPath; }

 private:
  const Platform::CanvasPathKind mKind;
  const std::unique_ptr<Platform::CanvasPath> mPath;
};

}  // namespace TF
