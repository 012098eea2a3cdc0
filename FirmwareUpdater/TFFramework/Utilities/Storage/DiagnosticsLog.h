#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>

#include "Platform/Datagram.h"
#include "TFFramework/Utilities/Storage/DebugStream.h"

namespace TF {

// Where diagnostics go: a pair of streams whose records, one at each flush, end in the
// system's debug output, on standard error, or as datagrams at a UDP listener. A record is
// plain text. Nothing shows on the terminal unless OpenConsole was called.
//
// Threads: any thread may call any operation. Write builds its record first and writes it
// under one lock; who uses the streams themselves holds GetMutex from the first character to
// the flush.
class DiagnosticsLog {
 public:
  // Takes the records of the first route, as UTF-8.
  using DebugOutput = std::function<void(std::string_view)>;
  static constexpr std::int32_t kNoPort = -1;

  DiagnosticsLog();
  explicit DiagnosticsLog(DebugOutput output);
  DiagnosticsLog(const DiagnosticsLog&) = delete;
  DiagnosticsLog& operator=(const DiagnosticsLog&) = delete;
  // Records that were not flushed go out.
  ~DiagnosticsLog();

  // Records become datagrams when port is above 0. A null host leaves the one that is set.
  // Counts until the first datagram, which settles the target.
  void SetRemoteTarget(const char* host, std::int32_t port);

  // Both streams show on standard error from now on.
  void OpenConsole();

  // Sends text as one datagram, the first time after a banner of three. host may be null:
  // this machine. A null or empty text and a failure are passed over.
  void SendDatagram(const char* host, std::int32_t port, const char* text);

  // Writes one record and a line end. Never throws: a record that cannot be written is lost.
  void Write(std::string_view utf8) noexcept;

  // Sends out what was written but not flushed.
  void Flush();

  std::recursive_mutex& GetMutex() { return mMutex; }
  std::ostream& GetNarrowStream() { return *mNarrowStream; }
  std::wostream& GetWideStream() { return *mWideStream; }
  // Puts another stream in place, which then must stay alive, and gives back the former one.
  std::ostream& SetNarrowStream(std::ostream& stream);

  // For the streams' buffers: a record of the debug streams, and text for the narrow stream.
  void EmitRecord(const std::string& utf8);
  void WriteNarrow(std::string_view utf8);

 private:
  void OpenSocket(const char* host, std::int32_t port);

  basic_dostream<char> mNarrowDebugStream{*this};
  basic_dostream<wchar_t> mWideDebugStream{*this};
  std::ostream* mNarrowStream = &mNarrowDebugStream;
  std::wostream* mWideStream = &mWideDebugStream;
  std::string mHost;
  std::int32_t mPort = kNoPort;

  WideConsoleStream mWideConsoleStream{*this};
  DebugOutput mDebugOutput;
  Platform::DatagramSocket mSocket;
  // Recursive: a flush under the lock comes back for the record's way out.
  std::recursive_mutex mMutex;
};

// The log of the process. It exists before main and is never destroyed, so that threads that
// outlive everything else can still write.
DiagnosticsLog& GetDiagnosticsLog();

// Writes one record to the log of the process; see DiagnosticsLog::Write.
inline void LogRecord(std::string_view utf8) noexcept {
  GetDiagnosticsLog().Write(utf8);
}

}  // namespace TF
