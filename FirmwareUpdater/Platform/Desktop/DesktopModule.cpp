#include "Platform/Desktop/DesktopModule.h"

#include <utility>

#include "Platform/Desktop/CairoCanvas.h"
#include "Platform/Desktop/CairoPath.h"
#include "Platform/Desktop/KeyFileProfile.h"
#include "Platform/Desktop/LiveObjects.h"
#include "Platform/Desktop/PangoTextFont.h"
#include "Platform/Desktop/PixmanPicture.h"
#include "Platform/Desktop/SdlWindowSystem.h"
#include "Platform/Desktop/XcbSplash.h"

namespace Platform {

namespace {

constexpr double kDotsPerInch = 96;

// The same for measuring and drawing. Hinting makes level strokes crisp and changes no advance; Pango
// rounds each advance to whole pixels, since Cairo places glyphs on whole pixels and the gaps between
// letters would differ.
CairoOptionsHandle TextOptions() {
  CairoOptionsHandle options(cairo_font_options_create());
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  return options;
}

}  // namespace

// The libraries keep what they share between all users for the whole process: Pango looks for fonts on
// a thread of its own, under which Cairo and fontconfig cannot be ended.
DesktopModule::~DesktopModule() {
  if (LiveObject::GetCount() == 0) return;
  // Who outlives the desktop still draws with these.
  static_cast<void>(mTextContext.release());
  static_cast<void>(mFontMap.release());
}

std::unique_ptr<Canvas> DesktopModule::CreateCanvas(std::int32_t width, std::int32_t height) {
  return std::make_unique<CairoCanvas>(width, height);
}

std::unique_ptr<CanvasPicture> DesktopModule::CreatePicture(std::int32_t width, std::int32_t height,
                                                            std::vector<std::uint32_t> pixels) {
  return std::make_unique<PixmanPicture>(width, height, std::move(pixels));
}

std::unique_ptr<CanvasPath> DesktopModule::CreatePath(CanvasPathKind kind,
                                                      std::span<const CanvasPoint> points) {
  return std::make_unique<CairoPath>(kind, points);
}

std::unique_ptr<CanvasFont> DesktopModule::OpenFont(const FontDescription& description) {
  if (!(description.mSize > 0)) return nullptr;
  return std::make_unique<PangoTextFont>(GetTextContext(), description);
}

std::unique_ptr<SplashSurface> DesktopModule::OpenSplash(const SplashPicture& picture,
                                                         const std::string& title) {
  return OpenXcbSplash(picture, title);
}

// The connection ends with the process: other threads may still wake the window system, and who ends it
// behind a display that is gone only waits.
WindowSystem& DesktopModule::GetWindowSystem() {
  // Pango reads about the fonts on its own thread while the display is found.
  GetTextContext();
  static WindowSystem& windowSystem = *new SdlWindowSystem([this] { return GetTextContext(); });
  return windowSystem;
}

std::unique_ptr<ProfileStore> DesktopModule::OpenProfile(const std::u16string& path) {
  return OpenKeyFileProfile(path);
}

PangoContext* DesktopModule::GetTextContext() {
  if (mTextContext) return mTextContext.get();
  mFontMap.reset(pango_cairo_font_map_new());
  mTextContext.reset(pango_font_map_create_context(mFontMap.get()));
  pango_cairo_context_set_resolution(mTextContext.get(), kDotsPerInch);
  pango_cairo_context_set_font_options(mTextContext.get(), TextOptions().get());
  return mTextContext.get();
}

}  // namespace Platform

// Found by name in the loaded module.
extern "C" Platform::Desktop* TesselDesktop() {
  static Platform::DesktopModule desktop;
  return &desktop;
}
