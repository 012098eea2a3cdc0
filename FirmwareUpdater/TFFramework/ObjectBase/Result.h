#pragma once

#include <cstdint>

// Result of an operation: negative is failure, 0 success, kNothingDone no failure.
using TFRESULT = std::int32_t;

namespace TF {

constexpr TFRESULT ResultFromCode(std::uint32_t code) {
  return static_cast<TFRESULT>(code);
}
constexpr bool Failed(TFRESULT result) {
  return result < 0;
}

inline constexpr TFRESULT kSuccess = 0;
// Nothing was done and that is no failure: an unknown name, a receiver that was not registered.
inline constexpr TFRESULT kNothingDone = 1;
inline constexpr TFRESULT kNotImplemented = ResultFromCode(0x80004001);
inline constexpr TFRESULT kAborted = ResultFromCode(0x80004004);
inline constexpr TFRESULT kFailure = ResultFromCode(0x80004005);
inline constexpr TFRESULT kOutOfMemory = ResultFromCode(0x8007000E);
inline constexpr TFRESULT kInvalidArgument = ResultFromCode(0x80070057);
inline constexpr TFRESULT kBufferTooSmall = ResultFromCode(0x8007007A);

// Results of the startup that end the run without an error report.
inline constexpr TFRESULT kStartupEnded0 = ResultFromCode(0x8000A000);
inline constexpr TFRESULT kStartupEnded1 = ResultFromCode(0x8000A001);
inline constexpr TFRESULT kStartupEnded2 = ResultFromCode(0x8000A002);
inline constexpr TFRESULT kStartupEnded3 = ResultFromCode(0x8000A003);
inline constexpr TFRESULT kStartupEnded16 = ResultFromCode(0x8000A010);
// The update processor has settled the run by itself: no main loop.
inline constexpr TFRESULT kRunSettled = ResultFromCode(0x8000A020);

}  // namespace TF
