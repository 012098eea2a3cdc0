#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace Platform {

struct MidiBuffer;

// Bytes of a short message by its status byte, 1 to 3; 0 for what begins no short message
// (data bytes, 0xF0, 0xF7).
std::uint32_t MidiShortLength(std::uint8_t status);

// Cuts a stream of MIDI bytes into the messages of a capture port, one at a time: complete
// short messages, and system-exclusive bytes stored in the buffer at hand. Knows no port,
// thread or clock.
//
// - Running status is filled in; data bytes without a status and undefined statuses are dropped.
// - A real-time byte is a message at once, wherever it stands, and disturbs none around it.
// - Any other status byte inside system-exclusive data cuts the message off. A message that
//   is still whole in its buffer is dropped, so that half a message never passes for a whole
//   one. If pieces of it have been handed out already, it is ended with a 0xF7 of our own:
//   otherwise the next message would be taken for its rest.
class MidiByteStream {
 public:
  enum class Outcome {
    kNeedBytes,   // All bytes are used.
    kShort,       // packed holds a short message, status byte lowest.
    kBufferDone,  // The buffer is full or ends with 0xF7; recorded tells its bytes.
    kNeedBuffer,  // The next byte belongs into a buffer and there is none.
  };
  struct Step {
    std::size_t used;  // Bytes to leave out in the next call.
    Outcome outcome;
    std::uint32_t packed;
  };

  // Uses bytes up to the end of the first message. buffer (at least one byte long) must stay
  // the same, with recorded 0 at first, until it is done; null while there is none.
  Step Feed(std::span<const char> bytes, MidiBuffer* buffer);

  // Forgets what has begun. Bytes stored in an unfinished buffer are the caller's to forget.
  void Reset() { *this = MidiByteStream(); }

 private:
  bool CutsOff(std::uint8_t byte) const;
  bool WantsBuffer(std::uint8_t byte) const;
  Outcome Take(std::uint8_t byte, MidiBuffer* buffer);
  Outcome Store(std::uint8_t byte, MidiBuffer& buffer);
  Outcome TakeRealTime(std::uint8_t byte);
  Outcome TakeStatus(std::uint8_t byte);
  Outcome TakeData(std::uint8_t byte);

  bool mInExclusive = false;
  bool mPieceOut = false;      // A buffer of the message in progress has been handed out.
  std::uint32_t mPartial = 0;  // Short message in progress, status lowest.
  std::uint32_t mHave = 0;     // Bytes in mPartial.
  std::uint32_t mNeed = 0;     // Bytes of the short message in progress; 0 without a status.
  std::uint32_t mPacked = 0;   // Short message of the last step.
};

}  // namespace Platform
