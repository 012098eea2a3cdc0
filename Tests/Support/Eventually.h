#pragma once

#include <chrono>
#include <thread>

namespace TestSupport {

// Asks again and again, for what has no event to wait for; false when it never comes true.
template <class Condition>
bool Eventually(Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace TestSupport
