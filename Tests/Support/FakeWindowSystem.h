#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Platform/WindowSystem.h"

namespace TestSupport {

class FakeWindowSystem;

// A window that shows nothing and remembers what it was asked for.
class FakePlatformWindow : public Platform::Window {
 public:
  FakePlatformWindow(FakeWindowSystem& system, const Platform::WindowDescription& description,
                     Platform::WindowListener& listener);
  ~FakePlatformWindow() override;

  void Present(const Platform::PixelView& pixels, std::span<const Platform::PixelRect> rects) override;
  void SetTitle(const std::string& title) override { mTitle = title; }
  void SetIcon(const Platform::PixelView& pixels) override { mIconSide = pixels.mWidth; }
  Platform::PixelRect GetClientRect() const override { return mClient; }
  Platform::PixelRect GetFrameRect() const override { return mClient; }
  void SetClientRect(const Platform::PixelRect& rect) override;
  void SetSizeLimits(const Platform::PixelSize& minimum, const Platform::PixelSize& maximum) override;
  void Show(Platform::WindowShow command) override;
  bool IsVisible() const override { return mIsVisible; }
  bool IsMinimized() const override { return mIsMinimized; }
  bool IsMaximized() const override { return mIsMaximized; }
  void Raise() override { mCalls.push_back("raise"); }
  void SetTopMost(bool topMost) override { mCalls.push_back(topMost ? "topmost" : "not topmost"); }
  bool HasFocus() const override { return mHasFocus; }
  void TakeFocus() override { mCalls.push_back("take focus"); }
  void SetEnabled(bool enabled) override { mIsEnabled = enabled; }
  bool IsEnabled() const override { return mIsEnabled; }
  void RequestPaint() override { mNeedsPaint = true; }
  std::uintptr_t GetNativeHandle() const override { return 77; }

  FakeWindowSystem& mSystem;
  Platform::WindowDescription mDescription;
  Platform::WindowListener& mListener;
  std::string mTitle;
  std::int32_t mIconSide = 0;
  Platform::PixelRect mClient;
  Platform::PixelSize mMinimum;
  Platform::PixelSize mMaximum;
  bool mIsVisible = false;
  bool mIsMinimized = false;
  bool mIsMaximized = false;
  bool mHasFocus = true;
  bool mIsEnabled = true;
  std::atomic<bool> mNeedsPaint{false};
  std::vector<std::string> mCalls;
  std::vector<Platform::PixelRect> mPresented;  // Of all calls.
  Platform::PixelView mPixels;                  // Of the last call.
};

// Shared with programs that a test plays.
class FakeClipboard : public Platform::Clipboard {
 public:
  bool SetText(const std::string& text) override { return Set(text, true); }
  bool SetPrivate() override { return Set({}, false); }
  void Look() override {}
  std::uint32_t GetSequenceNumber() const override { return mSequence; }
  bool HasPrivate() const override { return mHasPrivate; }
  bool HasText() const override { return mText.has_value(); }
  std::string GetText() const override {
    ++mReads;
    return mText.value_or("");
  }

  // Another program takes it, for a text or for something else.
  void TakeByOther(const std::optional<std::string>& text);

  std::optional<std::string> mText;
  bool mHasPrivate = false;
  bool mRefuses = false;
  mutable int mReads = 0;
  std::function<void()> mOnSet;  // While a text is handed over.

 private:
  bool Set(const std::string& text, bool isText);

  std::uint32_t mSequence = 1;
};

// Answers as a test has prepared it.
class FakeFileChooser : public Platform::FileChooser {
 public:
  Platform::FileChoice Choose(const Platform::FileRequest& request) override {
    mRequests.push_back(request);
    return mReal ? mReal->Choose(request) : mAnswer;
  }

  Platform::FileChoice mAnswer;
  Platform::FileChooser* mReal = nullptr;  // Answers instead.
  std::vector<Platform::FileRequest> mRequests;
};

// A display that does what a test has queued for it.
class FakeWindowSystem : public Platform::WindowSystem {
 public:
  using Input = std::function<void()>;

  std::unique_ptr<Platform::Window> CreateWindow(const Platform::WindowDescription& description,
                                                 Platform::WindowListener& listener) override;
  bool DispatchInput() override;
  void DispatchPaints() override;
  // Ends the loop of a test that has nothing more to say: throws after the last of mWaits.
  void Wait(std::uint32_t milliseconds) override;
  void Wake() override { ++mWakeUps; }
  void AnswerDisplay() override {}
  bool TakeQuitRequest() override { return std::exchange(mQuitRequest, false); }
  void RequestQuit() override { mQuitRequest = true; }
  Platform::CursorId GetSystemCursor(Platform::SystemCursor cursor) override {
    return 100 + static_cast<Platform::CursorId>(cursor);
  }
  Platform::CursorId MakeCursor(const Platform::PixelView& pixels,
                                const Platform::PixelPoint& hotSpot) override;
  void SetCursor(Platform::CursorId cursor) override { mCursors.push_back(cursor); }
  void ShowCursor(bool show) override { mCursorShown = show; }
  bool SetCursorPosition(const Platform::PixelPoint& point) override;
  bool GetCursorPosition(Platform::PixelPoint& point) override;
  std::uint32_t GetModifiers() const override { return mModifiers; }
  void GetKeyState(std::uint8_t virtualKey, bool& isDown, bool& isToggled) const override;
  Platform::PixelRect GetWorkArea() override { return mWorkArea; }
  Platform::MessageAnswer ShowMessage(const Platform::MessageRequest& request) override;
  Platform::Clipboard& GetClipboard() override { return mClipboard; }
  Platform::FileChooser& GetFileChooser() override { return mFileChooser; }

  std::vector<FakePlatformWindow*> mWindows;  // Those that exist, in the order of their making.
  std::deque<Input> mInput;
  std::deque<Input> mWaits;  // What happens while the program sleeps.
  int mWakeUps = 0;
  bool mQuitRequest = false;
  bool mRefusesWindows = false;
  bool mCursorShown = true;
  std::uint32_t mModifiers = 0;
  Platform::PixelRect mWorkArea{0, 0, 1000, 800};
  Platform::PixelPoint mCursorPosition;
  std::vector<Platform::CursorId> mCursors;
  std::vector<Platform::PixelPoint> mHotSpots;
  std::vector<Platform::MessageRequest> mMessages;
  FakeClipboard mClipboard;
  FakeFileChooser mFileChooser;
};

}  // namespace TestSupport
