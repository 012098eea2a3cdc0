#include "Tests/Support/ScreenPixels.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "Tests/Support/Eventually.h"

namespace TestSupport {

ScreenPixels::ScreenPixels() : mConnection(xcb_connect(nullptr, nullptr), xcb_disconnect), mRoot(0) {
  if (xcb_connection_has_error(mConnection.get()) != 0) throw std::runtime_error("no X server to look at");
  mRoot = xcb_setup_roots_iterator(xcb_get_setup(mConnection.get())).data->root;
}

std::uint32_t ScreenPixels::At(std::int16_t x, std::int16_t y) const {
  constexpr std::uint32_t kColorMask = 0x00FFFFFF;
  const auto cookie = xcb_get_image(mConnection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, mRoot, x, y, 1, 1, ~0U);
  const std::unique_ptr<xcb_get_image_reply_t, void (*)(void*)> reply(
      xcb_get_image_reply(mConnection.get(), cookie, nullptr), std::free);
  std::uint32_t pixel = ~0U;
  if (!reply || xcb_get_image_data_length(reply.get()) < static_cast<int>(sizeof pixel)) return pixel;
  std::memcpy(&pixel, xcb_get_image_data(reply.get()), sizeof pixel);
  return pixel & kColorMask;
}

bool ScreenPixels::Shows(int x, int y, std::uint32_t color) const {
  return Eventually([&] { return At(static_cast<std::int16_t>(x), static_cast<std::int16_t>(y)) == color; });
}

}  // namespace TestSupport
