#include "Platform/Desktop/XcbSplash.h"

#include <poll.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "Platform/Clock.h"

namespace Platform {

namespace {

struct Disconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeReply>;

constexpr std::uint8_t kTrueColorDepth = 24;
constexpr std::uint8_t kBitsPerPixel = 32;
constexpr std::uint32_t kBytesPerPixel = 4;
constexpr std::int32_t kLargestSide = 16384;

constexpr std::int32_t kBarMargin = 4;
constexpr std::int32_t kBarBottom = 20;  // From the picture's lower edge to the bar's upper one.
constexpr std::int32_t kBarHeight = 16;
constexpr std::int32_t kBarFrame = 1;
constexpr std::uint32_t kBarFrameColor = 0x00808080;
constexpr std::uint32_t kBarGroundColor = 0x00FFFFFF;
constexpr std::uint32_t kColorMask = 0x00FFFFFF;

// Pixels go to the server as they lie in memory, which takes a screen of the common kind.
bool TakesOurPixels(const xcb_setup_t& setup, const xcb_screen_t& screen) {
  if (setup.image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST || screen.root_depth != kTrueColorDepth)
    return false;
  for (auto format = xcb_setup_pixmap_formats_iterator(&setup); format.rem > 0; xcb_format_next(&format)) {
    if (format.data->depth == kTrueColorDepth) return format.data->bits_per_pixel == kBitsPerPixel;
  }
  return false;
}

const xcb_screen_t* FindScreen(const xcb_setup_t& setup, int number) {
  auto screen = xcb_setup_roots_iterator(&setup);
  for (; screen.rem > 0 && number > 0; --number) xcb_screen_next(&screen);
  return screen.rem > 0 ? screen.data : nullptr;
}

xcb_atom_t Atom(xcb_connection_t* connection, const std::string& name) {
  const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
  return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

// What the window manager leaves free of panels, else the whole screen.
xcb_rectangle_t WorkArea(xcb_connection_t* connection, const xcb_screen_t& screen) {
  constexpr std::uint32_t kNumbers = 4;
  const auto cookie = xcb_get_property(connection, 0, screen.root, Atom(connection, "_NET_WORKAREA"),
                                       XCB_ATOM_CARDINAL, 0, kNumbers);
  const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
  xcb_rectangle_t area{0, 0, screen.width_in_pixels, screen.height_in_pixels};
  if (!reply || reply->format != 32 || reply->value_len != kNumbers) return area;
  const auto* numbers = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  area.x = static_cast<std::int16_t>(numbers[0]);
  area.y = static_cast<std::int16_t>(numbers[1]);
  area.width = static_cast<std::uint16_t>(numbers[2]);
  area.height = static_cast<std::uint16_t>(numbers[3]);
  return area;
}

class XcbSplash final : public SplashSurface {
 public:
  XcbSplash(Connection connection, const xcb_screen_t& screen, const SplashPicture& picture,
            const std::string& title)
      : mConnection(std::move(connection)),
        mWidth(picture.mWidth),
        mHeight(picture.mHeight),
        mPixels(picture.mPixels.begin(), picture.mPixels.end()),
        mWindow(xcb_generate_id(mConnection.get())),
        mContext(xcb_generate_id(mConnection.get())) {
    CreateWindow(screen);
    SetProperties(title);
    xcb_create_gc(mConnection.get(), mContext, mWindow, 0, nullptr);
    xcb_map_window(mConnection.get(), mWindow);
    Draw();
  }

  // Nothing was refused so far.
  bool IsGood() {
    const Reply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(mConnection.get(), xcb_get_input_focus(mConnection.get()), nullptr));
    return reply && TakeEvents();
  }

  void ShowBar(std::int32_t position, std::uint32_t color) override {
    mHasBar = true;
    mPosition = position;
    mColor = color & kColorMask;
    DrawBar();
    xcb_flush(mConnection.get());
  }

  WaitStatus Wait(EventHandle& wake, std::uint32_t milliseconds) override {
    const std::uint32_t start = MillisecondTicks();
    while (true) {
      if (!TakeEvents()) return WaitStatus::kFailed;
      const std::uint32_t elapsed = MillisecondTicks() - start;
      const bool forever = milliseconds == kWaitForever;
      if (!forever && elapsed >= milliseconds) return WaitStatus::kTimeout;
      std::array<pollfd, 2> waits{pollfd{wake.GetDescriptor(), POLLIN, 0},
                                  pollfd{xcb_get_file_descriptor(mConnection.get()), POLLIN, 0}};
      const int limit = forever ? -1 : static_cast<int>(milliseconds - elapsed);
      if (poll(waits.data(), waits.size(), limit) < 0 && errno != EINTR) return WaitStatus::kFailed;
      if (wake.Wait(0) == WaitStatus::kSignalled) return WaitStatus::kSignalled;
    }
  }

 private:
  void CreateWindow(const xcb_screen_t& screen) {
    const xcb_rectangle_t area = WorkArea(mConnection.get(), screen);
    const auto x = static_cast<std::int16_t>(area.x + (area.width - mWidth) / 2);
    const auto y = static_cast<std::int16_t>(area.y + (area.height - mHeight) / 2);
    constexpr std::uint32_t kUnmanaged = 1;
    const std::array<std::uint32_t, 3> values{kBarGroundColor, kUnmanaged, XCB_EVENT_MASK_EXPOSURE};
    xcb_create_window(mConnection.get(), XCB_COPY_FROM_PARENT, mWindow, screen.root, x, y,
                      static_cast<std::uint16_t>(mWidth), static_cast<std::uint16_t>(mHeight), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
  }

  void SetProperties(const std::string& title) {
    const xcb_atom_t type = Atom(mConnection.get(), "_NET_WM_WINDOW_TYPE_SPLASH");
    xcb_change_property(mConnection.get(), XCB_PROP_MODE_REPLACE, mWindow,
                        Atom(mConnection.get(), "_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1, &type);
    if (title.empty()) return;
    xcb_change_property(mConnection.get(), XCB_PROP_MODE_REPLACE, mWindow,
                        Atom(mConnection.get(), "_NET_WM_NAME"), Atom(mConnection.get(), "UTF8_STRING"), 8,
                        static_cast<std::uint32_t>(title.size()), title.data());
  }

  // Draws what was uncovered. False when the display is gone or has refused something.
  bool TakeEvents() {
    while (const auto event = Reply<xcb_generic_event_t>(xcb_poll_for_event(mConnection.get()))) {
      constexpr std::uint8_t kSentFlag = 0x80;
      const auto type = static_cast<std::uint8_t>(event->response_type & ~kSentFlag);
      if (type == 0) return false;
      if (type == XCB_EXPOSE) Draw();
    }
    return xcb_connection_has_error(mConnection.get()) == 0;
  }

  void Draw() {
    DrawPicture();
    if (mHasBar) DrawBar();
    xcb_flush(mConnection.get());
  }

  // In as many rows at a time as one request holds.
  void DrawPicture() {
    constexpr std::uint32_t kRequestHead = 64;  // Bytes, more than the request's fixed part.
    const std::uint32_t stride = static_cast<std::uint32_t>(mWidth) * kBytesPerPixel;
    const std::uint32_t room = xcb_get_maximum_request_length(mConnection.get()) * 4 - kRequestHead;
    const auto rows = static_cast<std::int32_t>(std::max(1U, room / stride));
    for (std::int32_t y = 0; y < mHeight; y += rows) {
      const std::int32_t count = std::min(rows, mHeight - y);
      const std::uint32_t* pixels = mPixels.data() + std::ptrdiff_t{y} * mWidth;
      xcb_put_image(
          mConnection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, mWindow, mContext, static_cast<std::uint16_t>(mWidth),
          static_cast<std::uint16_t>(count), 0, static_cast<std::int16_t>(y), 0, kTrueColorDepth,
          static_cast<std::uint32_t>(count) * stride, reinterpret_cast<const std::uint8_t*>(pixels));
    }
  }

  void DrawBar() {
    const std::int32_t width = mWidth - 2 * kBarMargin;
    const std::int32_t top = mHeight - kBarBottom;
    const std::int32_t inner = width - 2 * kBarFrame;
    const std::int32_t filled = std::max(0, inner) * mPosition / 100;
    Fill(kBarFrameColor, kBarMargin, top, width, kBarHeight);
    Fill(kBarGroundColor, kBarMargin + kBarFrame + filled, top + kBarFrame, inner - filled,
         kBarHeight - 2 * kBarFrame);
    Fill(mColor, kBarMargin + kBarFrame, top + kBarFrame, filled, kBarHeight - 2 * kBarFrame);
  }

  void Fill(std::uint32_t color, std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    if (width <= 0 || height <= 0) return;
    xcb_change_gc(mConnection.get(), mContext, XCB_GC_FOREGROUND, &color);
    const xcb_rectangle_t rectangle{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                                    static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)};
    xcb_poly_fill_rectangle(mConnection.get(), mWindow, mContext, 1, &rectangle);
  }

  const Connection mConnection;
  const std::int32_t mWidth;
  const std::int32_t mHeight;
  const std::vector<std::uint32_t> mPixels;
  const xcb_window_t mWindow;
  const xcb_gcontext_t mContext;
  bool mHasBar = false;
  std::int32_t mPosition = 0;
  std::uint32_t mColor = 0;
};

}  // namespace

std::unique_ptr<SplashSurface> OpenXcbSplash(const SplashPicture& picture, const std::string& title) {
  const auto side = [](std::int32_t length) { return length >= 1 && length <= kLargestSide; };
  const std::size_t pixels =
      side(picture.mWidth) && side(picture.mHeight)
          ? static_cast<std::size_t>(picture.mWidth) * static_cast<std::size_t>(picture.mHeight)
          : 0;
  if (pixels == 0 || picture.mPixels.size() < pixels)
    throw std::runtime_error("the picture has no usable size");
  int number = 0;
  Connection connection(xcb_connect(nullptr, &number));
  if (xcb_connection_has_error(connection.get()) != 0) throw std::runtime_error("no X server answers");
  const xcb_setup_t& setup = *xcb_get_setup(connection.get());
  const xcb_screen_t* screen = FindScreen(setup, number);
  if (!screen || !TakesOurPixels(setup, *screen))
    throw std::runtime_error("the screen has no colours of 24 bits");
  auto splash = std::make_unique<XcbSplash>(std::move(connection), *screen, picture, title);
  if (!splash->IsGood()) throw std::runtime_error("the X server refused the window");
  return splash;
}

}  // namespace Platform
