// Drawing through the renderer beside the same pixels drawn by Cairo and Pango directly. Each pair
// prints the time of both; the wanted ratio is at most 1.2.

#include <benchmark/benchmark.h>
#include <pango/pangocairo.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "TFFramework/Renderer/Renderer.h"
#include "TFFramework/Utilities/Graphics/BitmapData.h"

namespace {

using TF::LRenderer;
using TF::RCPtr;
using TF::ResizeType;

constexpr std::int32_t kWindowWidth = 400;
constexpr std::int32_t kWindowHeight = 425;
constexpr std::uint32_t kOpaque = 0xFF;
constexpr std::uint32_t kTranslucent = 0x90;
constexpr std::int32_t kTileSide = 24;
constexpr float kFontSize = 8.25F;
constexpr const char16_t* kLabel = u"The firmware of your device has been updated.";
constexpr const char* kLabelUtf8 = "The firmware of your device has been updated.";

// The sizes of a button and of the whole window.
void Sizes(benchmark::internal::Benchmark* benchmark) {
  for (const auto& [width, height] : {std::pair{120, 31}, {kWindowWidth, kWindowHeight}}) {
    for (const std::uint32_t alpha : {kOpaque, kTranslucent}) benchmark->Args({width, height, alpha});
  }
}

// A frame of the renderer that stays open.
class Frame {
 public:
  Frame() {
    mRenderer->CreateRenderContext({0, 0, kWindowWidth, kWindowHeight}, nullptr, true, mContext);
    mRenderer->RenderStart(mContext);
  }

  LRenderer* operator->() const { return mRenderer.Get(); }

 private:
  const RCPtr<LRenderer> mRenderer = LRenderer::Create(1, nullptr);
  RCPtr<TF::LRenderContextInfo> mContext;
};

RCPtr<TF::LBitmap> MakePicture(std::int32_t width, std::int32_t height, std::uint32_t alpha) {
  const auto bitmap = TF::LBitmap::CreateFilledBitmap({width, height}, {});
  const auto data = TF::MakeRC<TF::LBitmapData>(bitmap, TF::LockMode::kWrite);
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width; ++x) {
      *data->GetPixelAddress(x, y) = alpha << 24 | static_cast<std::uint32_t>(x * 7 + y * 1000);
    }
  }
  return bitmap;
}

// Cairo as it comes, on a surface like the renderer's.
class Peer {
 public:
  Peer() { cairo_set_antialias(mCairo.get(), CAIRO_ANTIALIAS_NONE); }

  cairo_t* Get() const { return mCairo.get(); }

 private:
  std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> mSurface{
      cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kWindowWidth, kWindowHeight), cairo_surface_destroy};
  std::unique_ptr<cairo_t, decltype(&cairo_destroy)> mCairo{cairo_create(mSurface.get()), cairo_destroy};
};

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

Surface MakeSurface(std::int32_t width, std::int32_t height, std::uint32_t alpha) {
  Surface surface(
      cairo_image_surface_create(alpha == kOpaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32, width, height),
      cairo_surface_destroy);
  auto* const pixels = reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(surface.get()));
  for (std::int32_t index = 0; index < width * height; ++index) {
    pixels[index] = alpha << 24 | static_cast<std::uint32_t>(index & 0x7F);
  }
  cairo_surface_mark_dirty(surface.get());
  return surface;
}

struct Area {
  explicit Area(const benchmark::State& state)
      : mWidth(static_cast<std::int32_t>(state.range(0))),
        mHeight(static_cast<std::int32_t>(state.range(1))),
        mAlpha(static_cast<std::uint32_t>(state.range(2))) {}

  TF::RectT<float> Rect() const { return {0, 0, static_cast<float>(mWidth), static_cast<float>(mHeight)}; }

  std::int32_t mWidth;
  std::int32_t mHeight;
  std::uint32_t mAlpha;
};

void Drawing_Fill(benchmark::State& state) {
  const Frame frame;
  const Area area(state);
  const TF::LColor color = TF::LColor::FromPacked(area.mAlpha << 24 | 0x336699);
  for (auto _ : state) frame->FillRect(area.Rect(), color, true);
}
BENCHMARK(Drawing_Fill)->Apply(Sizes);

void Drawing_FillCairo(benchmark::State& state) {
  const Peer peer;
  const Area area(state);
  for (auto _ : state) {
    cairo_set_source_rgba(peer.Get(), 0.2, 0.4, 0.6, area.mAlpha / 255.0);
    cairo_rectangle(peer.Get(), 0, 0, area.mWidth, area.mHeight);
    cairo_fill(peer.Get());
  }
}
BENCHMARK(Drawing_FillCairo)->Apply(Sizes);

void DrawCached(benchmark::State& state, const RCPtr<TF::LBitmap>& picture, ResizeType type) {
  const Frame frame;
  const Area area(state);
  for (auto _ : state) frame->DrawBitmap(picture, area.Rect(), type);
}

void Drawing_Picture(benchmark::State& state) {
  const Area area(state);
  DrawCached(state, MakePicture(area.mWidth, area.mHeight, area.mAlpha), ResizeType::kStretch);
}
BENCHMARK(Drawing_Picture)->Apply(Sizes);

void Drawing_PictureCairo(benchmark::State& state) {
  const Peer peer;
  const Area area(state);
  const Surface surface = MakeSurface(area.mWidth, area.mHeight, area.mAlpha);
  for (auto _ : state) {
    cairo_set_source_surface(peer.Get(), surface.get(), 0, 0);
    cairo_rectangle(peer.Get(), 0, 0, area.mWidth, area.mHeight);
    cairo_fill(peer.Get());
  }
}
BENCHMARK(Drawing_PictureCairo)->Apply(Sizes);

void Drawing_Stretched(benchmark::State& state) {
  const Area area(state);
  DrawCached(state, MakePicture(area.mWidth / 2, area.mHeight / 2, area.mAlpha), ResizeType::kStretch);
}
BENCHMARK(Drawing_Stretched)->Apply(Sizes);

void Drawing_StretchedCairo(benchmark::State& state) {
  const Peer peer;
  const Area area(state);
  const Surface surface = MakeSurface(area.mWidth / 2, area.mHeight / 2, area.mAlpha);
  for (auto _ : state) {
    cairo_save(peer.Get());
    cairo_rectangle(peer.Get(), 0, 0, area.mWidth, area.mHeight);
    cairo_clip(peer.Get());
    cairo_scale(peer.Get(), 2, 2);
    cairo_set_source_surface(peer.Get(), surface.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(peer.Get()), CAIRO_FILTER_NEAREST);
    cairo_paint(peer.Get());
    cairo_restore(peer.Get());
  }
}
BENCHMARK(Drawing_StretchedCairo)->Apply(Sizes);

void Drawing_Tiled(benchmark::State& state) {
  const Area area(state);
  DrawCached(state, MakePicture(kTileSide, kTileSide, area.mAlpha), ResizeType::kTile);
}
BENCHMARK(Drawing_Tiled)->Apply(Sizes);

void Drawing_TiledCairo(benchmark::State& state) {
  const Peer peer;
  const Area area(state);
  const Surface surface = MakeSurface(kTileSide, kTileSide, area.mAlpha);
  for (auto _ : state) {
    cairo_set_source_surface(peer.Get(), surface.get(), 0, 0);
    cairo_pattern_set_extend(cairo_get_source(peer.Get()), CAIRO_EXTEND_REPEAT);
    cairo_rectangle(peer.Get(), 0, 0, area.mWidth, area.mHeight);
    cairo_fill(peer.Get());
  }
}
BENCHMARK(Drawing_TiledCairo)->Apply(Sizes);

// The first drawing of a size, with the resizing in it. Each picture is new to the cache.
void Drawing_FirstStretch(benchmark::State& state) {
  const Frame frame;
  const Area area(state);
  const RCPtr<TF::LBitmap> picture = MakePicture(area.mWidth / 2, area.mHeight / 2, area.mAlpha);
  for (auto _ : state) {
    frame->DrawBitmap(picture->CreateSubBitmap(0, 0, 0, 0), area.Rect(), ResizeType::kStretch);
  }
}
BENCHMARK(Drawing_FirstStretch)->Apply(Sizes);

// What a label does: it measures its text and draws it, and has the same text the next time.
void Drawing_Label(benchmark::State& state) {
  const Frame frame;
  const RCPtr<TF::LFont> font = TF::LFont::Get(u"Arial", kFontSize, TF::LFont::kRegular);
  const TF::String text = kLabel;
  const TF::LColor color{0.1F, 0.1F, 0.1F, 1};
  for (auto _ : state) {
    benchmark::DoNotOptimize(frame->MeasureText(text, font));
    frame->DrawText(text, font, {10, 10}, color);
  }
}
BENCHMARK(Drawing_Label);

void Drawing_LabelMeasured(benchmark::State& state) {
  const Frame frame;
  const RCPtr<TF::LFont> font = TF::LFont::Get(u"Arial", kFontSize, TF::LFont::kRegular);
  const TF::String text = kLabel;
  for (auto _ : state) benchmark::DoNotOptimize(frame->MeasureText(text, font));
}
BENCHMARK(Drawing_LabelMeasured);

using Layout = std::unique_ptr<PangoLayout, decltype(&g_object_unref)>;

// Kept by the peer for as long as it draws, as Pango's documents advise.
Layout MakeLayout(cairo_t* cairo) {
  Layout layout(pango_cairo_create_layout(cairo), g_object_unref);
  const std::unique_ptr<cairo_font_options_t, decltype(&cairo_font_options_destroy)> options(
      cairo_font_options_create(), cairo_font_options_destroy);
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  pango_cairo_context_set_font_options(pango_layout_get_context(layout.get()), options.get());
  pango_layout_context_changed(layout.get());
  const std::unique_ptr<PangoFontDescription, decltype(&pango_font_description_free)> description(
      pango_font_description_new(), pango_font_description_free);
  pango_font_description_set_family(description.get(), "Arial");
  pango_font_description_set_size(description.get(), static_cast<int>(kFontSize * PANGO_SCALE));
  pango_layout_set_font_description(layout.get(), description.get());
  pango_layout_set_text(layout.get(), kLabelUtf8, -1);
  return layout;
}

// One layout, kept for ever.
void Drawing_LabelPango(benchmark::State& state) {
  const Peer peer;
  const Layout layout = MakeLayout(peer.Get());
  for (auto _ : state) {
    PangoRectangle logical;
    pango_layout_get_extents(layout.get(), nullptr, &logical);
    benchmark::DoNotOptimize(logical);
    cairo_set_source_rgba(peer.Get(), 0.1, 0.1, 0.1, 1);
    cairo_move_to(peer.Get(), 10, 10);
    pango_cairo_show_layout(peer.Get(), layout.get());
  }
}
BENCHMARK(Drawing_LabelPango);

// What measuring costs who is given a text, as the renderer is, and keeps one layout for all.
void Drawing_LabelMeasuredPango(benchmark::State& state) {
  const Peer peer;
  const Layout layout = MakeLayout(peer.Get());
  for (auto _ : state) {
    PangoRectangle logical;
    pango_layout_set_text(layout.get(), kLabelUtf8, -1);
    pango_layout_get_extents(layout.get(), nullptr, &logical);
    benchmark::DoNotOptimize(logical);
  }
}
BENCHMARK(Drawing_LabelMeasuredPango);

}  // namespace
