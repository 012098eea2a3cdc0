#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Platform/WindowSystem.h"

namespace TestSupport {

// One line for each thing that a window was told: "press 1 10,20", "key 0x41 down 0x1" and so on.
class WindowRecorder : public Platform::WindowListener {
 public:
  void OnMousePress(const Platform::MouseEvent& event) override;
  void OnMouseRelease(const Platform::MouseEvent& event) override;
  void OnMouseMove(const Platform::MouseEvent& event) override;
  void OnMouseLeave() override { Add("leave"); }
  void OnWheel(Platform::WheelAxis axis, std::int32_t delta, const Platform::MouseEvent& event) override;
  void OnKey(const Platform::KeyEvent& event) override;
  void OnCharacter(char16_t character, std::uint32_t modifiers) override;
  void OnFocus(bool hasFocus) override { Add(hasFocus ? "focus" : "no focus"); }
  void OnResize(const Platform::PixelSize& client) override;
  void OnMove() override { Add("place"); }
  void OnExpose() override { Add("expose"); }
  void OnCloseRequest() override { Add("close"); }
  void OnDisplayChange() override { Add("display"); }
  void OnClipboardLost() override { Add("clipboard lost"); }
  void OnPaint() override { Add("paint"); }

  bool Has(const std::string& line) const;
  // Those that begin with one of the words.
  std::vector<std::string> Only(const std::vector<std::string>& words) const;
  void Clear() { mLines.clear(); }

  std::vector<std::string> mLines;
  std::function<void(const std::string& line)> mOnLine;  // Called with each.

 private:
  void Add(const std::string& line);
};

// Runs a line of the shell and gives what it printed. Throws runtime_error when it fails.
std::string Shell(const std::string& line);

// The client area on the screen of the window with this X11 number, in the writing of the shell: a word in
// $(...) may ask for it. Throws runtime_error.
Platform::PixelRect ReadPlace(const std::string& window);

// Hands out input and paints until the condition is true; false when it never comes true.
bool PumpUntil(Platform::WindowSystem& system, const std::function<bool()>& condition);

}  // namespace TestSupport
