#pragma once

#include <pango/pangocairo.h>

#include <memory>

#include "Platform/Desktop.h"
#include "Platform/Desktop/Handles.h"

namespace Platform {

// The desktop with Cairo, Pango and SDL behind it.
class DesktopModule : public Desktop {
 public:
  ~DesktopModule() override;

  std::unique_ptr<Canvas> CreateCanvas(std::int32_t width, std::int32_t height) override;
  std::unique_ptr<CanvasPicture> CreatePicture(std::int32_t width, std::int32_t height,
                                               std::vector<std::uint32_t> pixels) override;
  std::unique_ptr<CanvasPath> CreatePath(CanvasPathKind kind, std::span<const CanvasPoint> points) override;
  std::unique_ptr<CanvasFont> OpenFont(const FontDescription& description) override;
  std::unique_ptr<SplashSurface> OpenSplash(const SplashPicture& picture, const std::string& title) override;
  WindowSystem& GetWindowSystem() override;
  std::unique_ptr<ProfileStore> OpenProfile(const std::u16string& path) override;

 private:
  PangoContext* GetTextContext();

  // Made with the first font: looking for fonts takes milliseconds.
  GObjectHandle<PangoFontMap> mFontMap;
  GObjectHandle<PangoContext> mTextContext;
};

}  // namespace Platform
