#pragma once

#include <cstdint>

namespace TF {

// A key or a character with its modifiers.
struct KeyCode {
  std::uint32_t code = 0;
  std::uint32_t sides = 0;
  bool repeated = false;
};

}  // namespace TF
