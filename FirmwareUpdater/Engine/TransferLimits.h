#pragma once

#include <cstdint>

// The waits of a transfer, in milliseconds, and its counts. Tests shorten the waits whose
// length alone matters.
struct TransferLimits {
  // For any reply of the device.
  std::uint32_t mReplyMs = 5000;
  // After each write that is not acknowledged: the device stores it meanwhile.
  std::uint32_t mWritePauseMs = 5;
  // At the head of each pass over a region.
  std::uint32_t mRegionPauseMs = 5;
  // At the head of a pass for the late reply of the exchange that timed out before it.
  std::uint32_t mLateReplyMs = 500;
  // After an attempt to verify that got no reply.
  std::uint32_t mVerifyPauseMs = 500;
  std::uint32_t mVerifyAttempts = 2;
  // Every such write of a section, counted from its start, is acknowledged.
  std::uint32_t mWritesPerAcknowledgement = 8;
  // Failed passes in one transfer, over all regions together, that are made up for.
  std::uint32_t mRetries = 5;
};
