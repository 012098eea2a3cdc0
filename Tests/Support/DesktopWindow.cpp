#include "Tests/Support/DesktopWindow.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace TestSupport {

namespace {

std::string Hex(std::uint32_t number) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%x", number);
  return text.data();
}

std::string Place(const Platform::MouseEvent& event) {
  return std::to_string(event.mPoint.mX) + "," + std::to_string(event.mPoint.mY);
}

}  // namespace

void WindowRecorder::OnMousePress(const Platform::MouseEvent& event) {
  Add(std::string(event.mIsDoubleClick ? "double " : "press ") + std::to_string(event.mButton) + " " +
      Place(event));
}

void WindowRecorder::OnMouseRelease(const Platform::MouseEvent& event) {
  Add("release " + std::to_string(event.mButton) + " " + Place(event));
}

void WindowRecorder::OnMouseMove(const Platform::MouseEvent& event) {
  Add("move " + Place(event));
}

void WindowRecorder::OnWheel(Platform::WheelAxis axis, std::int32_t delta,
                             const Platform::MouseEvent& event) {
  Add((axis == Platform::WheelAxis::kVertical ? "wheel " : "side wheel ") + std::to_string(delta) + " " +
      Place(event));
}

void WindowRecorder::OnKey(const Platform::KeyEvent& event) {
  const std::string way = event.mPressed ? (event.mRepeated ? " again " : " down ") : " up ";
  Add("key " + Hex(event.mVirtualKey) + way + Hex(event.mModifiers));
}

void WindowRecorder::OnCharacter(char16_t character, std::uint32_t modifiers) {
  Add("character " + Hex(character) + " " + Hex(modifiers));
}

void WindowRecorder::OnResize(const Platform::PixelSize& client) {
  Add("size " + std::to_string(client.mWidth) + "x" + std::to_string(client.mHeight));
}

bool WindowRecorder::Has(const std::string& line) const {
  return std::find(mLines.begin(), mLines.end(), line) != mLines.end();
}

std::vector<std::string> WindowRecorder::Only(const std::vector<std::string>& words) const {
  std::vector<std::string> result;
  for (const std::string& line : mLines) {
    const auto begins = [&](const std::string& word) { return line.rfind(word, 0) == 0; };
    if (std::any_of(words.begin(), words.end(), begins)) result.push_back(line);
  }
  return result;
}

void WindowRecorder::Add(const std::string& line) {
  mLines.push_back(line);
  if (mOnLine) mOnLine(line);
}

std::string Shell(const std::string& line) {
  FILE* const pipe = popen(line.c_str(), "re");
  if (!pipe) throw std::runtime_error("cannot run: " + line);
  std::string output;
  for (int character = std::fgetc(pipe); character != EOF; character = std::fgetc(pipe))
    output.push_back(static_cast<char>(character));
  if (pclose(pipe) != 0) throw std::runtime_error("failed: " + line);
  return output;
}

Platform::PixelRect ReadPlace(const std::string& window) {
  Platform::PixelRect rect;
  const std::pair<const char*, std::int32_t&> fields[] = {{"Absolute upper-left X:", rect.mX},
                                                          {"Absolute upper-left Y:", rect.mY},
                                                          {"Width:", rect.mWidth},
                                                          {"Height:", rect.mHeight}};
  std::istringstream lines(Shell("xwininfo -id " + window));
  for (std::string line; std::getline(lines, line);) {
    for (const auto& [name, value] : fields) {
      const std::size_t found = line.find(name);
      if (found != std::string::npos) value = std::stoi(line.substr(found + std::strlen(name)));
    }
  }
  return rect;
}

bool PumpUntil(Platform::WindowSystem& system, const std::function<bool()>& condition) {
  constexpr std::uint32_t kLookAgainMs = 20;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (true) {
    system.DispatchInput();
    system.DispatchPaints();
    if (condition()) return true;
    if (std::chrono::steady_clock::now() > deadline) return false;
    system.Wait(kLookAgainMs);
  }
}

}  // namespace TestSupport
