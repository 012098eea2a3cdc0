// A window of 400 by 425 with 40 controls on a display that shows nothing: painting all of it beside the
// same shapes and texts drawn by Cairo and Pango directly (wanted: at most 1.5 times), painting one label
// whose text has changed (wanted: at most a tenth of the whole), and laying out larger trees.

#include <benchmark/benchmark.h>
#include <pango/pangocairo.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Benchmarks/WindowStage.h"

namespace {

using TF::LControl;
using TF::RCPtr;
using WindowBenchmarks::Box;
using WindowBenchmarks::Number;
using WindowBenchmarks::Stage;

constexpr std::int32_t kWidth = 400;
constexpr std::int32_t kHeight = 425;
constexpr std::int32_t kColumns = 4;
constexpr std::int32_t kRows = 10;
constexpr std::int32_t kCellWidth = kWidth / kColumns;
constexpr std::int32_t kCellHeight = kHeight / kRows;
constexpr std::int32_t kBoxWidth = 90;
constexpr std::int32_t kBoxHeight = 34;
constexpr float kFontSize = 8.25F;

struct Cell {
  std::int32_t mX;
  std::int32_t mY;
  std::string mText;
};

std::vector<Cell> Cells() {
  std::vector<Cell> cells;
  for (std::int32_t i = 0; i < kColumns * kRows; ++i)
    cells.push_back(
        {i % kColumns * kCellWidth + 5, i / kColumns * kCellHeight + 4, "label " + std::to_string(i)});
  return cells;
}

std::unique_ptr<Stage> MakeFortyLabels() {
  std::string boxes;
  for (const Cell& cell : Cells())
    boxes += Box(cell.mText, Number("XPositionAbs", cell.mX) + Number("YPositionAbs", cell.mY) +
                                 Number("XSizeAbs", kBoxWidth) + Number("YSizeAbs", kBoxHeight));
  auto stage = std::make_unique<Stage>(boxes);
  for (const Cell& cell : Cells()) stage->Child(cell.mText)->SetText(TF::FromUtf8(cell.mText));
  stage->Paint();
  return stage;
}

// The same picture by Cairo and Pango as they come, with the texts laid out beforehand.
class Direct {
 public:
  Direct() {
    const std::unique_ptr<cairo_font_options_t, decltype(&cairo_font_options_destroy)> options(
        cairo_font_options_create(), cairo_font_options_destroy);
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    cairo_set_antialias(mCairo.get(), CAIRO_ANTIALIAS_NONE);
    cairo_set_font_options(mCairo.get(), options.get());
    const std::unique_ptr<PangoFontDescription, decltype(&pango_font_description_free)> font(
        pango_font_description_from_string("Liberation Sans"), pango_font_description_free);
    pango_font_description_set_size(font.get(), static_cast<int>(kFontSize * PANGO_SCALE));
    for (const Cell& cell : mCells) {
      PangoLayout* const layout =
          mLayouts.emplace_back(pango_cairo_create_layout(mCairo.get()), g_object_unref).get();
      pango_layout_set_font_description(layout, font.get());
      pango_layout_set_text(layout, cell.mText.c_str(), -1);
    }
  }

  void Paint() {
    cairo_t* const cairo = mCairo.get();
    cairo_set_source_rgb(cairo, 1, 1, 1);
    cairo_paint(cairo);
    for (std::size_t i = 0; i < mCells.size(); ++i) {
      SetColor(0xD5EAEC);
      cairo_rectangle(cairo, mCells[i].mX, mCells[i].mY, kBoxWidth, kBoxHeight);
      cairo_fill(cairo);
      SetColor(0x17212B);
      cairo_move_to(cairo, mCells[i].mX + kTextX, mCells[i].mY + kTextY);
      pango_cairo_show_layout(cairo, mLayouts[i].get());
    }
    cairo_surface_flush(mSurface.get());
  }

  std::uint32_t At(std::int32_t x, std::int32_t y) const {
    const auto* const row =
        cairo_image_surface_get_data(mSurface.get()) + y * cairo_image_surface_get_stride(mSurface.get());
    return reinterpret_cast<const std::uint32_t*>(row)[x];
  }

 private:
  // Where the window puts the text in a box.
  static constexpr double kTextX = 5;
  static constexpr double kTextY = 9;

  void SetColor(std::uint32_t color) {
    const auto channel = [color](int shift) { return static_cast<double>(color >> shift & 0xFF) / 0xFF; };
    cairo_set_source_rgb(mCairo.get(), channel(16), channel(8), channel(0));
  }

  const std::vector<Cell> mCells = Cells();
  std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> mSurface{
      cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kWidth, kHeight), cairo_surface_destroy};
  std::unique_ptr<cairo_t, decltype(&cairo_destroy)> mCairo{cairo_create(mSurface.get()), cairo_destroy};
  std::vector<std::unique_ptr<PangoLayout, decltype(&g_object_unref)>> mLayouts;
};

// Pixels of the last whole paint that the direct one has otherwise.
std::int64_t CountDifferences(Stage& stage, const Direct& direct) {
  std::int64_t count = 0;
  const Platform::PixelView& shown = stage.Shown().mPixels;
  for (std::int32_t y = 0; y < kHeight; ++y) {
    const auto* const row = shown.mPixels + y * shown.mStride / sizeof(std::uint32_t);
    for (std::int32_t x = 0; x < kWidth; ++x)
      if (row[x] != direct.At(x, y)) ++count;
  }
  return count;
}

void PaintWindow(benchmark::State& state) {
  const auto stage = MakeFortyLabels();
  Direct direct;
  direct.Paint();
  stage->Root()->InvalidateAll();
  stage->Paint();
  state.counters["other_pixels"] = static_cast<double>(CountDifferences(*stage, direct));
  for (auto _ : state) {
    stage->Root()->InvalidateAll();
    stage->Paint();
  }
}
BENCHMARK(PaintWindow)->Unit(benchmark::kMicrosecond);

void PaintDirectly(benchmark::State& state) {
  Direct direct;
  for (auto _ : state) direct.Paint();
}
BENCHMARK(PaintDirectly)->Unit(benchmark::kMicrosecond);

// One of two texts in turn, or each time one that was never there.
void PaintOneLabel(benchmark::State& state, bool isNew) {
  const auto stage = MakeFortyLabels();
  const RCPtr<LControl> label = stage->Child("label 17");
  std::int64_t count = 0;
  for (auto _ : state) {
    ++count;
    label->SetText(TF::FromUtf8("new " + std::to_string(isNew ? count : count % 2)));
    stage->Paint();
  }
}
BENCHMARK_CAPTURE(PaintOneLabel, KnownTexts, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(PaintOneLabel, NewTexts, true)->Unit(benchmark::kMicrosecond);

// Each control has a share of its panel's size, and each panel of the window's.
void ResizeTree(benchmark::State& state) {
  constexpr std::int64_t kPerPanel = 24;  // 25 with the panel.
  const std::int64_t panels = state.range(0) / (kPerPanel + 1);
  std::string tree;
  for (std::int64_t panel = 0; panel < panels; ++panel) {
    std::string boxes;
    for (std::int64_t box = 0; box < kPerPanel; ++box)
      boxes +=
          Box("b" + std::to_string(box), " XSizeToControl='Client' YSizeToControl='Client'" +
                                             Number("XSizeRel", 0.9) + Number("YSizeRel", 0.04) +
                                             Number("YPositionRel", static_cast<double>(box) / kPerPanel));
    tree += Box("p" + std::to_string(panel),
                " XSizeToControl='Client' YSizeToControl='Client'" + Number("XSizeRel", 0.5) +
                    Number("YSizeRel", 0.5),
                boxes);
  }
  Stage stage(tree);
  const RCPtr<LControl> last = stage.Child("p" + std::to_string(panels - 1))->FindChild(u"b23");
  const double width = last->GetBounds().mWidth;
  stage.Resize(2 * kWidth, 2 * kHeight);
  if (!(last->GetBounds().mWidth > width)) throw std::runtime_error("the last control kept its size");
  bool larger = true;
  for (auto _ : state) {
    larger = !larger;
    stage.Resize(larger ? 2 * kWidth : kWidth, larger ? 2 * kHeight : kHeight);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ResizeTree)
    ->Arg(250)
    ->Arg(500)
    ->Arg(1000)
    ->Arg(2000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity(benchmark::oN);

}  // namespace
