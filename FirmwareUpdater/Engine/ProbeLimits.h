#pragma once

#include <cstdint>

// How long the engine waits for a device, and how often it asks.
struct ProbeLimits {
  std::uint32_t mVersionReplyMs = 1000;  // Each attempt; the normal firmware answers at once.
  std::int32_t mVersionAttempts = 5;
  std::uint32_t mBootloaderReplyMs = 2000;  // One attempt: a bootloader has just answered five queries.
  std::uint32_t mOpenReplyMs = 10000;       // One attempt; the bootloader may prepare its flash here.
};
