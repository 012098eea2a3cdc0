#pragma once

#include <mutex>

namespace TF {

// A recursive lock: the thread that holds it may take it again.
class Mutex {
 public:
  Mutex() = default;
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;
  virtual ~Mutex() = default;

  void Lock() { mLock.lock(); }
  void Unlock() { mLock.unlock(); }

 private:
  std::recursive_mutex mLock;
};

// Holds a Mutex for the length of a scope.
class MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) : mMutex(mutex) { mMutex.Lock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;
  ~MutexLock() { mMutex.Unlock(); }

 private:
  Mutex& mMutex;
};

}  // namespace TF
