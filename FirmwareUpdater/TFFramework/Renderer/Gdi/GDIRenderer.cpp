#include "TFFramework/Renderer/Gdi/GDIRenderer.h"

#include <new>
#include <stdexcept>
#include <utility>

#include "Platform/Clock.h"
#include "Platform/Desktop.h"
#include "TFFramework/Application/FrameworkApp.h"
#include "TFFramework/ObjectBase/Exception.h"
#include "TFFramework/Renderer/Gdi/PictureScaling.h"
#include "TFFramework/Renderer/Gdi/TargetPixels.h"

namespace TF {

namespace {

// Pixels of one kept picture.
constexpr std::int64_t kMaxPicturePixels = 16 * 1024 * 1024;

std::uint32_t ApplicationTick() {
  LFrameworkApp* const application = LFrameworkApp::GetInstance();
  return application ? application->GetTickCount() : Platform::MillisecondTicks();
}

Platform::PixelRect Pixels(const RectT<std::int32_t>& rect) {
  return {rect.mX, rect.mY, rect.mWidth, rect.mHeight};
}

bool CanBeKept(const SizeT<std::int32_t>& size) {
  return std::int64_t{size.mWidth} * size.mHeight <= kMaxPicturePixels;
}

}  // namespace

LGDIRenderer::LGDIRenderer() : mLastPurgeTick(ApplicationTick()) {
  Platform::GetDesktop();
}

TFRESULT LGDIRenderer::CreateRenderContext(const RectT<std::int32_t>& rect, Platform::WindowSurface* window,
                                           bool offscreen, RCPtr<LRenderContextInfo>& context) {
  context = nullptr;
  try {
    context = MakeRC<LGDIRenderContextInfo>(rect, window, offscreen);
  } catch (const std::bad_alloc&) {
    return kFailure;
  }
  return kSuccess;
}

TFRESULT LGDIRenderer::RenderStart(const RCPtr<LRenderContextInfo>& context) {
  const TFRESULT result = LRenderer::RenderStart(context);
  const RCPtr<LGDIRenderContextInfo> started = context;
  try {
    if (started) MakeBuffersFit(*started);
  } catch (const std::bad_alloc&) {
    // The frame has not begun.
    LRenderer::RenderFinish(context);
    throw;
  }
  mContext = started;
  NoteClip();
  return result;
}

void LGDIRenderer::MakeBuffersFit(LGDIRenderContextInfo& context) {
  const SizeT<std::int32_t> size{context.mRect.mWidth, context.mRect.mHeight};
  if (context.mBackBuffer->HasSize(size) && !context.mRegion.IsRect(context.mRect)) return;
  context.mBackBuffer->Resize(size);
  // The other one is cleared when its turn comes.
  if (!context.mAltBuffer->HasSize(size)) context.mAltBuffer->Resize(size);
}

TFRESULT LGDIRenderer::RenderFinish(const RCPtr<LRenderContextInfo>& context) {
  const TFRESULT result = LRenderer::RenderFinish(context);
  const RCPtr<LGDIRenderContextInfo> finished = std::exchange(mContext, RCPtr<LGDIRenderContextInfo>());
  mContext = RCPtr<LRenderContextInfo>(GetTopContext());
  NoteClip();
  if (finished && !finished->mIsOffscreen && finished->mWindow) Show(*finished);
  PurgeNowAndThen();
  return result;
}

void LGDIRenderer::Show(LGDIRenderContextInfo& context) {
  const Platform::PixelView pixels = context.mBackBuffer->GetCanvas().GetPixels();
  const RectT<std::int32_t> whole{0, 0, pixels.mWidth, pixels.mHeight};
  mShownRects.clear();
  for (std::int32_t index = context.mRegion.GetCount(); index-- > 0;) {
    const RectT<std::int32_t> visible = Intersect(context.mRegion[index], whole);
    if (!IsEmpty(visible)) mShownRects.push_back(Pixels(visible));
  }
  context.mWindow->Present(pixels, mShownRects);
}

void LGDIRenderer::PurgeNowAndThen() {
  const std::uint32_t now = ApplicationTick();
  if (now - mLastPurgeTick <= kPurgePeriod) return;
  mBitmapCache.Purge(mBitmapCache.GetPurgeClock());
  mBitmapCache.SetPurgeClock(mBitmapCache.GetClock());
  mLastPurgeTick = now;
}

// The clip changes more often than something is drawn.
Platform::Canvas* LGDIRenderer::GetCanvas() {
  if (!mContext) return nullptr;
  Platform::Canvas& canvas = mContext->mBackBuffer->GetCanvas();
  canvas.SetClip(ToPixels(mTargetClip));
  return &canvas;
}

void LGDIRenderer::SetClipRect(const RectT<double>& rect) {
  LRenderer::SetClipRect(rect);
  NoteClip();
}

// As it lies at this moment: a later move of the origin does not move it.
void LGDIRenderer::NoteClip() {
  if (!mContext) return;
  const RenderState& state = mContext->mState;
  mTargetClip = {state.mOrigin.mX + state.mClip.mX, state.mOrigin.mY + state.mClip.mY, state.mClip.mWidth,
                 state.mClip.mHeight};
}

Platform::PixelRect LGDIRenderer::ToTarget(const RectT<double>& rect) const {
  const PointT<double>& origin = mContext->mState.mOrigin;
  return ToPixels({origin.mX + rect.mX, origin.mY + rect.mY, rect.mWidth, rect.mHeight});
}

Platform::CanvasPoint LGDIRenderer::ToTarget(const PointT<float>& point) const {
  const PointT<double>& origin = mContext->mState.mOrigin;
  return {origin.mX + point.mX, origin.mY + point.mY};
}

void LGDIRenderer::DrawBitmap(const RCPtr<LBitmap>& bitmap, const RectT<float>& rect, ResizeType resizeType) {
  if (!mContext) Throw<std::runtime_error>("", "TF::LGDIRenderer::DrawBitmap");
  const SizeT<std::int32_t> size{RoundToInt32(rect.mWidth), RoundToInt32(rect.mHeight)};
  if (!bitmap || size.mWidth <= 0 || size.mHeight <= 0) return;
  const Platform::CanvasPoint place = ToTarget(PointT<float>{rect.mX, rect.mY});
  const PointT<std::int32_t> corner{ToPixel(place.mX), ToPixel(place.mY)};
  if (!CanBeKept(size)) return DrawVisible(*bitmap, corner, size, resizeType);
  const RCPtr<LCachedBitmap> cached = FindPicture(bitmap, size, resizeType);
  GetCanvas()->DrawPicture(cached->GetPicture(), corner.mX, corner.mY);
}

// Of a picture that is too large to be kept, only what can be seen is scaled, each time.
void LGDIRenderer::DrawVisible(const LBitmap& bitmap, const PointT<std::int32_t>& corner,
                               const SizeT<std::int32_t>& size, ResizeType resizeType) {
  const Platform::PixelRect clip = ToTarget(mContext->mState.mClip);
  const SizeT<std::int32_t> target = mContext->mBackBuffer->GetSize();
  RectT<std::int32_t> area = Intersect(RectT<std::int32_t>{clip.mX, clip.mY, clip.mWidth, clip.mHeight},
                                       RectT<std::int32_t>{0, 0, target.mWidth, target.mHeight});
  area = Intersect(area, RectT<std::int32_t>{corner.mX, corner.mY, size.mWidth, size.mHeight});
  if (IsEmpty(area)) return;
  const RectT<std::int32_t> part{area.mX - corner.mX, area.mY - corner.mY, area.mWidth, area.mHeight};
  const auto picture = Platform::GetDesktop().CreatePicture(part.mWidth, part.mHeight,
                                                            ScalePicture(bitmap, size, resizeType, part));
  GetCanvas()->DrawPicture(*picture, area.mX, area.mY);
}

RCPtr<LCachedBitmap> LGDIRenderer::FindPicture(const RCPtr<LBitmap>& bitmap, const SizeT<std::int32_t>& size,
                                               ResizeType resizeType) {
  RCPtr<LCachedBitmap>* const slot = mBitmapCache.Find({bitmap, size.mWidth, size.mHeight});
  if (!*slot) {
    *slot = MakeRC<LCachedBitmap>(Platform::GetDesktop().CreatePicture(
        size.mWidth, size.mHeight,
        ScalePicture(*bitmap, size, resizeType, {0, 0, size.mWidth, size.mHeight})));
  }
  return *slot;
}

TFRESULT LGDIRenderer::DrawContext(const RCPtr<LRenderContextInfo>& context, const PointT<float>& point,
                                   const RectT<std::int32_t>& sourceRect) {
  const RCPtr<LGDIRenderContextInfo> source = context;
  if (!source || !source->mIsOffscreen) return kInvalidArgument;
  if (!mContext) return kFailure;
  const Platform::CanvasPoint place = ToTarget(point);
  const bool drawn = GetCanvas()->DrawCanvas(source->mBackBuffer->GetCanvas(), Pixels(sourceRect),
                                             ToPixel(place.mX), ToPixel(place.mY));
  return drawn ? kSuccess : kFailure;
}

TFRESULT LGDIRenderer::DrawContextAndSwap(const RCPtr<LRenderContextInfo>& context,
                                          const PointT<float>& point) {
  const RCPtr<LGDIRenderContextInfo> source = context;
  if (!source || !source->mIsOffscreen) return kInvalidArgument;
  if (!mContext) return kFailure;
  std::swap(source->mBackBuffer, source->mAltBuffer);
  source->mBackBuffer->GetCanvas().Clear();
  const SizeT<std::int32_t> size = source->mAltBuffer->GetSize();
  const Platform::CanvasPoint place = ToTarget(point);
  GetCanvas()->DrawCanvas(source->mAltBuffer->GetCanvas(), {0, 0, size.mWidth, size.mHeight},
                          ToPixel(place.mX), ToPixel(place.mY));
  return kSuccess;
}

}  // namespace TF
