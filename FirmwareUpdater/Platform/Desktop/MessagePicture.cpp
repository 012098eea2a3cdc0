#include "Platform/Desktop/MessagePicture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <utility>

#include "Platform/Desktop/MessageColors.h"
#include "Platform/Desktop/MessageIcons.h"
#include "Platform/Desktop/PangoTextFont.h"

namespace Platform {

namespace {

constexpr double kFontSize = 10;  // Points.
constexpr std::int32_t kMargin = 24;
constexpr std::int32_t kIconSide = 40;
constexpr std::int32_t kIconGap = 20;
constexpr std::int32_t kFooterMargin = 16;
constexpr std::int32_t kButtonHeight = 34;
constexpr std::int32_t kButtonPadding = 18;
constexpr std::int32_t kLeastButtonWidth = 92;
constexpr std::int32_t kButtonGap = 12;
constexpr std::int32_t kFooterHeight = kButtonHeight + 2 * kFooterMargin;
constexpr std::int32_t kLeastWidth = 300;
constexpr std::int32_t kComfortableTextWidth = 440;
constexpr std::size_t kLongestText = 20000;  // Bytes: more than any screen has room for.
constexpr double kCornerRadius = 5;
constexpr double kFocusRingGap = 2.5;
constexpr double kFocusRingWidth = 2;

PixelSize MeasureLayout(PangoLayout* layout) {
  PixelSize size;
  pango_layout_get_pixel_size(layout, &size.mWidth, &size.mHeight);
  return size;
}

// Pango takes no bytes that are no UTF-8.
std::string MakeValid(const std::string& text) {
  const std::unique_ptr<char, Releaser<g_free>> valid(
      g_utf8_make_valid(text.data(), static_cast<gssize>(std::min(text.size(), kLongestText))));
  return valid.get();
}

GObjectHandle<PangoLayout> MakeLayout(PangoContext* context, const std::string& text, bool bold) {
  GObjectHandle<PangoLayout> layout(pango_layout_new(context));
  pango_layout_set_font_description(layout.get(), DescribeFont({{}, kFontSize, bold}).get());
  pango_layout_set_text(layout.get(), MakeValid(text).c_str(), -1);
  return layout;
}

std::vector<std::pair<MessageAnswer, std::string>> ButtonsOf(const MessageRequest& request) {
  const MessageLabels& labels = request.mLabels;
  const std::pair ok{MessageAnswer::kOk, labels.mOk};
  const std::pair cancel{MessageAnswer::kCancel, labels.mCancel};
  const std::pair yes{MessageAnswer::kYes, labels.mYes};
  const std::pair no{MessageAnswer::kNo, labels.mNo};
  switch (request.mButtons) {
    case MessageButtons::kOkCancel:
      return {ok, cancel};
    case MessageButtons::kYesNo:
      return {yes, no};
    case MessageButtons::kYesNoCancel:
      return {yes, no, cancel};
    default:
      return {ok};
  }
}

void AddRoundedRect(cairo_t* cairo, double x, double y, double width, double height, double radius) {
  constexpr double kQuarter = std::numbers::pi / 2;
  cairo_new_sub_path(cairo);
  cairo_arc(cairo, x + width - radius, y + radius, radius, -kQuarter, 0);
  cairo_arc(cairo, x + width - radius, y + height - radius, radius, 0, kQuarter);
  cairo_arc(cairo, x + radius, y + height - radius, radius, kQuarter, 2 * kQuarter);
  cairo_arc(cairo, x + radius, y + radius, radius, 2 * kQuarter, 3 * kQuarter);
  cairo_close_path(cairo);
}

void FillRect(cairo_t* cairo, const PixelRect& rect, std::uint32_t color) {
  SetColor(cairo, color);
  cairo_rectangle(cairo, rect.mX, rect.mY, rect.mWidth, rect.mHeight);
  cairo_fill(cairo);
}

}  // namespace

MessagePicture::MessagePicture(PangoContext* context, const MessageRequest& request, const PixelSize& largest)
    : mIcon(request.mIcon), mText(MakeLayout(context, request.mText, false)) {
  MakeButtons(context, request);
  const std::int32_t iconSpace = mIcon == MessageIcon::kNone ? 0 : kIconSide + kIconGap;
  FitText({largest.mWidth - 2 * kMargin - iconSpace, largest.mHeight - 2 * kMargin - kFooterHeight});
  const std::int32_t rowWidth = -PlaceButtons(0, 0) + 2 * kMargin;
  mSize.mWidth = std::max({mTextSize.mWidth + 2 * kMargin + iconSpace, rowWidth, kLeastWidth});
  const std::int32_t bodyHeight = std::max(mTextSize.mHeight, iconSpace > 0 ? kIconSide : 0);
  mSize.mHeight = bodyHeight + 2 * kMargin + kFooterHeight;
  mTextCorner = {kMargin + iconSpace, kMargin + (bodyHeight - mTextSize.mHeight) / 2};
  PlaceButtons(mSize.mWidth - kMargin, mSize.mHeight - kFooterMargin - kButtonHeight);
  mSurface.reset(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, mSize.mWidth, mSize.mHeight));
  mCairo.reset(cairo_create(mSurface.get()));
  if (cairo_status(mCairo.get()) != CAIRO_STATUS_SUCCESS)
    throw std::runtime_error("no memory for the picture of a message");
}

// A text that is too high for the room gets all of its width, and then loses its end.
void MessagePicture::FitText(const PixelSize& room) {
  PangoLayout* const layout = mText.get();
  pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
  mTextSize = MeasureLayout(layout);
  const std::int32_t widest = std::max(room.mWidth, 1);
  for (const std::int32_t width : {std::min(kComfortableTextWidth, widest), widest}) {
    if (mTextSize.mWidth <= width && mTextSize.mHeight <= room.mHeight) return;
    pango_layout_set_width(layout, width * PANGO_SCALE);
    mTextSize = MeasureLayout(layout);
    if (mTextSize.mHeight <= room.mHeight) return;
  }
  pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
  pango_layout_set_height(layout, std::max(room.mHeight, 1) * PANGO_SCALE);
  mTextSize = MeasureLayout(layout);
}

void MessagePicture::MakeButtons(PangoContext* context, const MessageRequest& request) {
  for (const auto& [answer, label] : ButtonsOf(request)) {
    mAnswers.push_back(answer);
    mButtons.push_back({{}, MakeLayout(context, label, true)});
  }
}

// In a row that ends at right; gives where it begins.
std::int32_t MessagePicture::PlaceButtons(std::int32_t right, std::int32_t top) {
  std::int32_t left = right + kButtonGap;
  for (auto button = mButtons.rbegin(); button != mButtons.rend(); ++button) {
    const std::int32_t label = MeasureLayout(button->mLabel.get()).mWidth;
    const std::int32_t width = std::max(label + 2 * kButtonPadding, kLeastButtonWidth);
    left -= kButtonGap + width;
    button->mRect = {left, top, width, kButtonHeight};
  }
  return left;
}

std::optional<std::size_t> MessagePicture::FindButton(const PixelPoint& point) const {
  for (std::size_t i = 0; i < mButtons.size(); ++i) {
    const PixelRect& rect = mButtons[i].mRect;
    if (point.mX >= rect.mX && point.mY >= rect.mY && point.mX < rect.mX + rect.mWidth &&
        point.mY < rect.mY + rect.mHeight)
      return i;
  }
  return std::nullopt;
}

PixelView MessagePicture::Draw(const MessageButtonStates& states) {
  cairo_t* const cairo = mCairo.get();
  FillRect(cairo, {0, 0, mSize.mWidth, mSize.mHeight}, MessageColor::kGround);
  FillRect(cairo, {0, mSize.mHeight - kFooterHeight, mSize.mWidth, kFooterHeight},
           MessageColor::kFooterGround);
  DrawMessageIcon(cairo, mIcon, {kMargin, kMargin, kIconSide, kIconSide});
  SetColor(cairo, MessageColor::kInk);
  cairo_move_to(cairo, mTextCorner.mX, mTextCorner.mY);
  pango_cairo_show_layout(cairo, mText.get());
  for (std::size_t i = 0; i < mButtons.size(); ++i) DrawButton(mButtons[i], i, states);
  cairo_surface_flush(mSurface.get());
  return {reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(mSurface.get())), mSize.mWidth,
          mSize.mHeight, static_cast<std::size_t>(cairo_image_surface_get_stride(mSurface.get()))};
}

void MessagePicture::DrawButton(const Button& button, std::size_t index,
                                const MessageButtonStates& states) const {
  cairo_t* const cairo = mCairo.get();
  const bool isFocused = states.mFocused == index;
  const bool isHovered = states.mHovered == index;
  const bool isPressed = isHovered && states.mPressed == index;
  const std::array<std::uint32_t, 3> faces =
      isFocused ? std::array{MessageColor::kAccent, MessageColor::kAccentHover, MessageColor::kAccentDeep}
                : std::array{MessageColor::kGround, MessageColor::kTint, MessageColor::kTintDeep};
  const PixelRect& rect = button.mRect;
  // Lines run through the middle of the pixels.
  AddRoundedRect(cairo, rect.mX + 0.5, rect.mY + 0.5, rect.mWidth - 1, rect.mHeight - 1, kCornerRadius);
  SetColor(cairo, faces[isPressed ? 2 : isHovered ? 1 : 0]);
  cairo_fill_preserve(cairo);
  SetColor(cairo, isFocused ? MessageColor::kAccentDeep : MessageColor::kBorder);
  cairo_set_line_width(cairo, 1);
  cairo_stroke(cairo);
  if (isFocused) {
    AddRoundedRect(cairo, rect.mX - kFocusRingGap, rect.mY - kFocusRingGap, rect.mWidth + 2 * kFocusRingGap,
                   rect.mHeight + 2 * kFocusRingGap, kCornerRadius + kFocusRingGap);
    SetColor(cairo, MessageColor::kTintDeep);
    cairo_set_line_width(cairo, kFocusRingWidth);
    cairo_stroke(cairo);
  }
  const PixelSize label = MeasureLayout(button.mLabel.get());
  SetColor(cairo, isFocused ? MessageColor::kOnAccent : MessageColor::kInk);
  cairo_move_to(cairo, rect.mX + (rect.mWidth - label.mWidth) / 2,
                rect.mY + (rect.mHeight - label.mHeight) / 2);
  pango_cairo_show_layout(cairo, button.mLabel.get());
}

}  // namespace Platform
