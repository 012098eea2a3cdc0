#include "TFFramework/Utilities/Storage/DiagnosticsLog.h"

#include <exception>
#include <iostream>
#include <utility>

#include "Platform/DebugOutput.h"

namespace TF {

namespace {

constexpr const char* kLoopback = "127.0.0.1";

std::string TargetAddress(const char* host) {
  std::string address;
  if (host != nullptr) address = Platform::ResolveHost(host);
  if (address.empty()) address = Platform::ResolveHost(Platform::LocalHostName());
  return address.empty() ? kLoopback : address;
}

// Builds the log before main and sends out its last record at exit.
struct LogLifetime {
  LogLifetime() { GetDiagnosticsLog(); }
  LogLifetime(const LogLifetime&) = delete;
  LogLifetime& operator=(const LogLifetime&) = delete;
  ~LogLifetime() { GetDiagnosticsLog().Flush(); }
};

const LogLifetime gLogLifetime;

}  // namespace

DiagnosticsLog::DiagnosticsLog() : DiagnosticsLog(Platform::WriteDebugOutput) {}

DiagnosticsLog::DiagnosticsLog(DebugOutput output) : mDebugOutput(std::move(output)) {}

// The streams' buffers go last but need the fields behind them, so they are emptied here.
DiagnosticsLog::~DiagnosticsLog() {
  Flush();
}

void DiagnosticsLog::SetRemoteTarget(const char* host, std::int32_t port) {
  const std::lock_guard lock(mMutex);
  mPort = port;
  if (host != nullptr) mHost = host;
}

void DiagnosticsLog::OpenConsole() {
  const std::lock_guard lock(mMutex);
  std::cerr << std::unitbuf;
  mNarrowStream = &std::cerr;
  mWideStream = &mWideConsoleStream;
}

void DiagnosticsLog::SendDatagram(const char* host, std::int32_t port, const char* text) {
  const std::lock_guard lock(mMutex);
  if (!mSocket.IsOpen()) OpenSocket(host, port);
  // A failure has nobody to go to: diagnostics never disturb the program.
  if (mSocket.IsOpen() && text != nullptr && *text != '\0') mSocket.Send(text);
}

void DiagnosticsLog::OpenSocket(const char* host, std::int32_t port) {
  const std::string address = TargetAddress(host);
  // As many bits as a port has, whatever was asked for.
  if (!mSocket.Open(address, static_cast<std::uint16_t>(port & 0xFFFF))) return;
  for (const char* text : {"*** APPLICATION Launched on ", address.c_str(), "***\n"}) {
    SendDatagram(host, port, text);
  }
}

void DiagnosticsLog::Write(std::string_view utf8) noexcept {
  try {
    std::string record(utf8);
    record += '\n';
    WriteNarrow(record);
  } catch (const std::exception&) {
    // A record that cannot be written is lost: diagnostics never disturb the program.
  }
}

void DiagnosticsLog::Flush() {
  const std::lock_guard lock(mMutex);
  mNarrowDebugStream.flush();
  mWideDebugStream.flush();
  mWideConsoleStream.flush();
}

std::ostream& DiagnosticsLog::SetNarrowStream(std::ostream& stream) {
  const std::lock_guard lock(mMutex);
  return *std::exchange(mNarrowStream, &stream);
}

void DiagnosticsLog::EmitRecord(const std::string& utf8) {
  // A flush without a record must not even open the socket, which would send the banner.
  if (utf8.empty()) return;
  const std::lock_guard lock(mMutex);
  if (mPort < 1)
    mDebugOutput(utf8);
  else
    SendDatagram(mHost.empty() ? nullptr : mHost.c_str(), mPort, utf8.c_str());
}

void DiagnosticsLog::WriteNarrow(std::string_view utf8) {
  const std::lock_guard lock(mMutex);
  mNarrowStream->clear();  // One write that failed must not silence the log for ever.
  mNarrowStream->write(utf8.data(), static_cast<std::streamsize>(utf8.size()));
  mNarrowStream->flush();
}

DiagnosticsLog& GetDiagnosticsLog() {
  static DiagnosticsLog& log = *new DiagnosticsLog();
  return log;
}

}  // namespace TF
