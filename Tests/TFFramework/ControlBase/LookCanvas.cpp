#include "Tests/TFFramework/ControlBase/LookCanvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "TFFramework/ControlBase/Look.h"
#include "TFFramework/Renderer/AutoClip.h"
#include "TFFramework/Renderer/Gdi/GDIRenderContextInfo.h"

namespace TF {
namespace {

LColor Unpremultiplied(std::uint32_t argb) {
  LColor color = LColor::FromPacked(argb);
  if (color.mAlpha <= 0) return {};
  color.mRed /= color.mAlpha;
  color.mGreen /= color.mAlpha;
  color.mBlue /= color.mAlpha;
  return color;
}

double LuminanceOf(const LColor& color) {
  const auto linear = [](float channel) {
    return channel <= 0.03928F ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.mRed) + 0.7152 * linear(color.mGreen) + 0.0722 * linear(color.mBlue);
}

}  // namespace

LookCanvas::LookCanvas(std::int32_t width, std::int32_t height, const LColor& ground)
    : mWidth(width), mHeight(height), mPixels(static_cast<std::size_t>(width * height), ground) {}

const LColor& LookCanvas::At(std::int32_t x, std::int32_t y) const {
  return mPixels.at(static_cast<std::size_t>(y * mWidth + x));
}

void LookCanvas::Paint(const ConstRCPtr<LLookDescriptor>& descriptor) {
  const RCPtr<LRenderer> renderer = LRenderer::Create(static_cast<std::int32_t>(RendererType::kGdi), nullptr);
  const RectT<std::int32_t> area{0, 0, mWidth, mHeight};
  RCPtr<LRenderContextInfo> context;
  ASSERT_EQ(renderer->CreateRenderContext(area, nullptr, true, context), kSuccess);
  context->mRegion = Region(area);
  renderer->RenderStart(context);
  const RectT<double> frame{0, 0, static_cast<double>(mWidth), static_cast<double>(mHeight)};
  renderer->FillRect({0, 0, static_cast<float>(mWidth), static_cast<float>(mHeight)}, mPixels.front(), false);
  {
    const CAutoClip clip(renderer, frame, frame, nullptr, true);
    LLook look(descriptor, nullptr);
    look.SetSize({mWidth, mHeight});
    look.RenderClient(renderer, context->mRegion);
    look.RenderNonClient(renderer, context->mRegion);
  }
  renderer->RenderFinish(context);
  const Platform::PixelView view =
      dynamic_cast<LGDIRenderContextInfo&>(*context).mBackBuffer->GetCanvas().GetPixels();
  for (std::size_t i = 0; i < mPixels.size(); ++i) {
    const auto width = static_cast<std::size_t>(mWidth);
    mPixels[i] =
        Unpremultiplied(view.mPixels[i / width * (view.mStride / sizeof(std::uint32_t)) + i % width]);
  }
}

double ContrastOf(const LColor& left, const LColor& right) {
  const auto [dark, light] = std::minmax({LuminanceOf(left), LuminanceOf(right)});
  return (light + 0.05) / (dark + 0.05);
}

}  // namespace TF
