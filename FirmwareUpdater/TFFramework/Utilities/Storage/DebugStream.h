#pragma once

#include <ostream>
#include <sstream>
#include <string>
#include <string_view>

namespace TF {

class DiagnosticsLog;

// UTF-8 of wide text in which each element is a character; what is none becomes U+FFFD.
std::string WideToUtf8(std::wstring_view text);

}  // namespace TF

// Collects the text of one record and hands it to its log at each flush. The record ends at
// its first zero. Threads: as the log says for its streams.
template <class E>
class basic_debugbuf : public std::basic_stringbuf<E> {
 public:
  explicit basic_debugbuf(TF::DiagnosticsLog& log) : mLog(log) {}
  basic_debugbuf(const basic_debugbuf&) = delete;
  basic_debugbuf& operator=(const basic_debugbuf&) = delete;
  // A record that was not flushed goes out.
  ~basic_debugbuf() override;

 protected:
  int sync() override;

 private:
  TF::DiagnosticsLog& mLog;
};

// A stream over a debug buffer of its own.
template <class E>
class basic_dostream : public std::basic_ostream<E> {
 public:
  explicit basic_dostream(TF::DiagnosticsLog& log) : std::basic_ostream<E>(nullptr), mBuffer(log) {
    this->rdbuf(&mBuffer);
  }

 private:
  basic_debugbuf<E> mBuffer;
};

extern template class basic_debugbuf<char>;
extern template class basic_debugbuf<wchar_t>;

namespace TF {

// A wide stream that shows each record, at its flush, on the log's narrow stream: the
// system's own wide stream for standard error would print nothing beside a narrow one.
class WideConsoleStream : public std::wostream {
 public:
  explicit WideConsoleStream(DiagnosticsLog& log) : std::wostream(nullptr), mBuffer(log) { rdbuf(&mBuffer); }

 private:
  class Buffer : public std::wstringbuf {
   public:
    explicit Buffer(DiagnosticsLog& log) : mLog(log) {}

   protected:
    int sync() override;

   private:
    DiagnosticsLog& mLog;
  };

  Buffer mBuffer;
};

}  // namespace TF
