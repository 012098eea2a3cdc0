#include "Tests/Support/LogCapture.h"

#include <chrono>

namespace TestSupport {

namespace {

constexpr std::chrono::seconds kPatience{20};

}  // namespace

LogCapture::LogCapture(TF::DiagnosticsLog& log) : mLog(log), mFormer(log.SetNarrowStream(mStream)) {}

LogCapture::~LogCapture() {
  mLog.SetNarrowStream(mFormer);
}

std::string LogCapture::Text() {
  const std::lock_guard lock(mBuffer.mMutex);
  return mBuffer.mText;
}

bool LogCapture::Contains(std::string_view text) {
  return Text().find(text) != std::string::npos;
}

bool LogCapture::WaitFor(std::string_view text) {
  std::unique_lock lock(mBuffer.mMutex);
  return mBuffer.mGrown.wait_for(lock, kPatience,
                                 [&] { return mBuffer.mText.find(text) != std::string::npos; });
}

LogCapture::Buffer::int_type LogCapture::Buffer::overflow(int_type character) {
  if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
  const char one = traits_type::to_char_type(character);
  return xsputn(&one, 1) == 1 ? character : traits_type::eof();
}

std::streamsize LogCapture::Buffer::xsputn(const char* text, std::streamsize size) {
  const std::lock_guard lock(mMutex);
  mText.append(text, static_cast<std::size_t>(size));
  mGrown.notify_all();
  return size;
}

}  // namespace TestSupport
