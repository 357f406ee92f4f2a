#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#if defined(__clang__)
#define FENNICK_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define FENNICK_THREAD_ATTRIBUTE(x)
#endif

// Marks a member that may be touched only while `m` is held; clang's build checks it.
#define GUARDED_BY(m) FENNICK_THREAD_ATTRIBUTE(guarded_by(m))
// Marks a private helper that expects its caller to hold `m`.
#define REQUIRES(m) FENNICK_THREAD_ATTRIBUTE(requires_capability(m))

namespace fennick {

// A lock that clang's thread-safety analysis understands. No code calls callbacks or other components while
// holding one, except the file system and the log, and no code holds two.
class FENNICK_THREAD_ATTRIBUTE(capability("mutex")) Mutex {
public:
  void lock() FENNICK_THREAD_ATTRIBUTE(acquire_capability()) { mutex_.lock(); }
  void unlock() FENNICK_THREAD_ATTRIBUTE(release_capability()) { mutex_.unlock(); }

private:
  friend class Locked;
  std::mutex mutex_;
};

// Holds a Mutex for a scope. `wait` sleeps once on a condition and releases the lock meanwhile: call it in a
// loop.
class FENNICK_THREAD_ATTRIBUTE(scoped_lockable) Locked {
public:
  explicit Locked(Mutex &mutex) FENNICK_THREAD_ATTRIBUTE(acquire_capability(mutex)) : lock_(mutex.mutex_) {}
  ~Locked() FENNICK_THREAD_ATTRIBUTE(release_capability()) {} // NOLINT(modernize-use-equals-default)
  Locked(const Locked &) = delete;
  Locked &operator=(const Locked &) = delete;

  void wait(std::condition_variable &condition) { condition.wait(lock_); }
  // Waits at most about `most`.
  void waitFor(std::condition_variable &condition, std::chrono::duration<double> most) {
    condition.wait_for(lock_, most);
  }

private:
  std::unique_lock<std::mutex> lock_;
};

} // namespace fennick
