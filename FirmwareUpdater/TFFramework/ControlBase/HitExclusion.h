#pragma once

#include <utility>
#include <vector>

#include "TFFramework/ObjectBase/RCPtr.h"

namespace TF {

class LControl;

// Keeps controls out of hit tests as long as it lives, to find what lies beneath them.
//
// Threads: main thread.
class HitExclusion {
 public:
  HitExclusion() = default;
  HitExclusion(const HitExclusion&) = delete;
  HitExclusion& operator=(const HitExclusion&) = delete;
  ~HitExclusion();

  // The control alone.
  void Add(const RCPtr<LControl>& control);
  // The control and everything below it.
  void AddTree(const RCPtr<LControl>& control);

 private:
  std::vector<RCPtr<LControl>> mExcluded;
};

}  // namespace TF
