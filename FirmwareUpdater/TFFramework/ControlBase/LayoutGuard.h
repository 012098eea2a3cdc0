#pragma once

namespace TF {

// Sets a mark as long as it lives, and puts it back whatever happens meanwhile.
class LayoutGuard {
 public:
  explicit LayoutGuard(bool& mark) : mMark(mark), mBefore(mark) { mMark = true; }
  LayoutGuard(const LayoutGuard&) = delete;
  LayoutGuard& operator=(const LayoutGuard&) = delete;
  ~LayoutGuard() { mMark = mBefore; }

 private:
  bool& mMark;
  const bool mBefore;
};

}  // namespace TF
