#pragma once

#include <cstdint>
#include <memory>

struct xcb_connection_t;

namespace TestSupport {

// What the X server of DISPLAY shows. Throws runtime_error when none answers.
class ScreenPixels {
 public:
  ScreenPixels();

  // 0x00RRGGBB of the screen; 0xFFFFFFFF when it cannot be asked.
  std::uint32_t At(std::int16_t x, std::int16_t y) const;
  // Asks until it is this colour; false when it never is.
  bool Shows(int x, int y, std::uint32_t color) const;

 private:
  std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)> mConnection;
  std::uint32_t mRoot;
};

}  // namespace TestSupport
