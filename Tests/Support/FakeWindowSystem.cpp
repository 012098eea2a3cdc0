#include "Tests/Support/FakeWindowSystem.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace TestSupport {

FakePlatformWindow::FakePlatformWindow(FakeWindowSystem& system,
                                       const Platform::WindowDescription& description,
                                       Platform::WindowListener& listener)
    : mSystem(system), mDescription(description), mListener(listener), mClient(description.mClient) {
  mSystem.mWindows.push_back(this);
}

FakePlatformWindow::~FakePlatformWindow() {
  std::erase(mSystem.mWindows, this);
}

void FakePlatformWindow::Present(const Platform::PixelView& pixels,
                                 std::span<const Platform::PixelRect> rects) {
  mPixels = pixels;
  mPresented.insert(mPresented.end(), rects.begin(), rects.end());
}

void FakePlatformWindow::SetClientRect(const Platform::PixelRect& rect) {
  mClient = rect;
  mCalls.push_back("client rect");
}

void FakePlatformWindow::SetSizeLimits(const Platform::PixelSize& minimum,
                                       const Platform::PixelSize& maximum) {
  mMinimum = minimum;
  mMaximum = maximum;
  mCalls.push_back("limits");
}

void FakePlatformWindow::Show(Platform::WindowShow command) {
  if (!mIsVisible) mCalls.push_back("show");
  mIsVisible = command != Platform::WindowShow::kHide;
  mIsMinimized = command == Platform::WindowShow::kMinimize;
  mIsMaximized = command == Platform::WindowShow::kMaximize;
}

void FakeClipboard::TakeByOther(const std::optional<std::string>& text) {
  mText = text;
  mHasPrivate = false;
  ++mSequence;
}

bool FakeClipboard::Set(const std::string& text, bool isText) {
  if (mOnSet) mOnSet();
  const bool keepsText = isText && !mRefuses;
  mText = keepsText ? std::optional(text) : std::nullopt;
  mHasPrivate = !keepsText;
  return !mRefuses;
}

std::unique_ptr<Platform::Window> FakeWindowSystem::CreateWindow(
    const Platform::WindowDescription& description, Platform::WindowListener& listener) {
  if (mRefusesWindows) throw std::runtime_error("no window");
  return std::make_unique<FakePlatformWindow>(*this, description, listener);
}

bool FakeWindowSystem::DispatchInput() {
  bool any = std::exchange(mWakeUps, 0) != 0;
  while (!mInput.empty()) {
    any = true;
    const Input next = std::move(mInput.front());
    mInput.pop_front();
    next();
  }
  return any;
}

void FakeWindowSystem::DispatchPaints() {
  for (std::size_t i = 0; i < mWindows.size(); ++i) {
    if (mWindows[i]->mNeedsPaint.exchange(false)) mWindows[i]->mListener.OnPaint();
  }
}

void FakeWindowSystem::Wait(std::uint32_t) {
  if (mWaits.empty()) throw std::logic_error("The loop sleeps, and nothing is left to wake it.");
  const Input next = std::move(mWaits.front());
  mWaits.pop_front();
  next();
}

Platform::CursorId FakeWindowSystem::MakeCursor(const Platform::PixelView&,
                                                const Platform::PixelPoint& hotSpot) {
  mHotSpots.push_back(hotSpot);
  return 1000 + mHotSpots.size();
}

bool FakeWindowSystem::SetCursorPosition(const Platform::PixelPoint& point) {
  mCursorPosition = point;
  return true;
}

bool FakeWindowSystem::GetCursorPosition(Platform::PixelPoint& point) {
  point = mCursorPosition;
  return true;
}

void FakeWindowSystem::GetKeyState(std::uint8_t virtualKey, bool& isDown, bool& isToggled) const {
  isDown = virtualKey == 'D';
  isToggled = virtualKey == 'T';
}

Platform::MessageAnswer FakeWindowSystem::ShowMessage(const Platform::MessageRequest& request) {
  mMessages.push_back(request);
  return Platform::MessageAnswer::kOk;
}

}  // namespace TestSupport
