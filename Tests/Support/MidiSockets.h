#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "Platform/OwnedDescriptor.h"

namespace TestSupport {

// The device's end of one connection of a virtual MIDI port. Every wait has a deadline after
// which the test fails.
class MidiConnection {
 public:
  explicit MidiConnection(Platform::OwnedDescriptor socket) : mSocket(std::move(socket)) {}

  void Send(std::string_view bytes);
  // Exactly so many bytes, fewer only when the connection ends before.
  std::string Receive(std::size_t count);
  // All bytes up to the end of the connection.
  std::string ReceiveToEnd();
  // True once the computer has closed its end; reads nothing.
  bool WaitForHangUp();
  void Close() { mSocket.Reset(); }

 private:
  Platform::OwnedDescriptor mSocket;
};

// A listening socket that plays one direction of a virtual MIDI device (NAME.in or NAME.out).
class MidiSocket {
 public:
  static constexpr int kUsualBacklog = 64;

  // Throws system_error when the socket cannot be made.
  explicit MidiSocket(const std::filesystem::path& path, int backlog = kUsualBacklog);
  ~MidiSocket();
  MidiSocket(const MidiSocket&) = delete;
  MidiSocket& operator=(const MidiSocket&) = delete;

  // The next connection; the test fails when none comes in time.
  MidiConnection Accept();
  // Removes the socket's file; connections and the socket itself live on.
  void RemoveFile();
  // Listens no more but leaves the file behind, as a crashed device does.
  void StopListening() { mSocket.Reset(); }

 private:
  std::filesystem::path mPath;
  Platform::OwnedDescriptor mSocket;
};

}  // namespace TestSupport
