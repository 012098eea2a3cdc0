#pragma once

#include <cstdint>
#include <string>

namespace Platform {

// What the programs of one display hand to each other by cutting and pasting, as far as it is text.
//
// A display tells nothing of who has taken its clipboard, and of an empty text as little as of none: what
// this program has put there itself is remembered here, and counts as still there as long as no other text is
// found.
//
// Threads: main thread.
class Clipboard {
 public:
  virtual ~Clipboard() = default;

  // UTF-8, up to its first zero character. False when the display does not take it, as for one of many
  // megabytes: other programs then find nothing, and HasPrivate is true.
  virtual bool SetText(const std::string& text) = 0;
  // Something that only this program understands: other programs find nothing.
  virtual bool SetPrivate() = 0;

  // Asks the display what is there now.
  virtual void Look() = 0;

  // As of the last call of those above. 1 at the start; rises when there is a text other than the last one
  // that was set or found.
  virtual std::uint32_t GetSequenceNumber() const = 0;
  virtual bool HasPrivate() const = 0;
  virtual bool HasText() const = 0;
  // Valid UTF-8, whatever the other program has put there; empty without a text.
  virtual std::string GetText() const = 0;
};

}  // namespace Platform
