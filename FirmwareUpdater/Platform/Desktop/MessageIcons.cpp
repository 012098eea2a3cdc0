#include "Platform/Desktop/MessageIcons.h"

#include <cstdint>
#include <numbers>

#include "Platform/Desktop/MessageColors.h"

namespace Platform {

namespace {

constexpr double kFullTurn = 2 * std::numbers::pi;
// The signs are drawn in a square of this side.
constexpr double kSide = 40;
constexpr double kCenter = kSide / 2;
constexpr double kStroke = 4;

void DrawDot(cairo_t* cairo, double x, double y) {
  cairo_arc(cairo, x, y, kStroke / 2 + 0.4, 0, kFullTurn);
  cairo_fill(cairo);
}

void DrawLine(cairo_t* cairo, double fromX, double fromY, double toX, double toY) {
  cairo_move_to(cairo, fromX, fromY);
  cairo_line_to(cairo, toX, toY);
  cairo_stroke(cairo);
}

void DrawDisc(cairo_t* cairo, std::uint32_t color) {
  SetColor(cairo, color);
  cairo_arc(cairo, kCenter, kCenter, kCenter, 0, kFullTurn);
  cairo_fill(cairo);
  SetColor(cairo, MessageColor::kSign);
}

void DrawInformation(cairo_t* cairo) {
  DrawDisc(cairo, MessageColor::kAccent);
  DrawDot(cairo, kCenter, 11);
  DrawLine(cairo, kCenter, 18, kCenter, 29);
}

void DrawQuestion(cairo_t* cairo) {
  DrawDisc(cairo, MessageColor::kAccent);
  constexpr double kQuarter = kFullTurn / 4;
  cairo_arc(cairo, kCenter, 15, 5.5, -2 * kQuarter, 0.55 * kQuarter);
  cairo_curve_to(cairo, 21.5, 21, kCenter, 21.5, kCenter, 24.5);
  cairo_stroke(cairo);
  DrawDot(cairo, kCenter, 30.5);
}

void DrawWarning(cairo_t* cairo) {
  SetColor(cairo, MessageColor::kWarning);
  cairo_move_to(cairo, kCenter, 4.5);
  cairo_line_to(cairo, 36.5, 34.5);
  cairo_line_to(cairo, 3.5, 34.5);
  cairo_close_path(cairo);
  cairo_fill_preserve(cairo);
  cairo_set_line_width(cairo, 5);
  cairo_stroke(cairo);
  cairo_set_line_width(cairo, kStroke);
  SetColor(cairo, MessageColor::kSign);
  DrawLine(cairo, kCenter, 14, kCenter, 23);
  DrawDot(cairo, kCenter, 30);
}

void DrawError(cairo_t* cairo) {
  DrawDisc(cairo, MessageColor::kError);
  DrawLine(cairo, 13.5, 13.5, 26.5, 26.5);
  DrawLine(cairo, 26.5, 13.5, 13.5, 26.5);
}

}  // namespace

void DrawMessageIcon(cairo_t* cairo, MessageIcon icon, const PixelRect& square) {
  cairo_save(cairo);
  cairo_translate(cairo, square.mX, square.mY);
  cairo_scale(cairo, square.mWidth / kSide, square.mHeight / kSide);
  cairo_set_line_width(cairo, kStroke);
  cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
  switch (icon) {
    case MessageIcon::kInformation:
      DrawInformation(cairo);
      break;
    case MessageIcon::kQuestion:
      DrawQuestion(cairo);
      break;
    case MessageIcon::kWarning:
      DrawWarning(cairo);
      break;
    case MessageIcon::kError:
      DrawError(cairo);
      break;
    case MessageIcon::kNone:
      break;
  }
  cairo_restore(cairo);
}

}  // namespace Platform
