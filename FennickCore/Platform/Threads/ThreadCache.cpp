#include "FennickCore/Platform/Threads/ThreadCache.h"

#include <utility>

namespace fennick {

ThreadCache::~ThreadCache() {
  promised_.end();
  while (true) {
    std::thread next;
    {
      Locked locked(lock_);
      while (finished_.empty() && !threads_.empty())
        locked.wait(changed_);
      if (finished_.empty())
        return;
      next = std::move(finished_.front());
      finished_.pop_front();
    }
    next.join();
  }
}

void ThreadCache::run(std::function<void()> task) {
  joinFinished();
  if (claimIdleThread())
    promised_.add(std::move(task));
  else
    startThread(std::move(task));
}

bool ThreadCache::claimIdleThread() {
  const Locked locked(lock_);
  if (idle_ == 0)
    return false;
  --idle_;
  return true;
}

void ThreadCache::startThread(std::function<void()> task) {
  const Locked locked(lock_);
  const auto self = threads_.emplace(threads_.end());
  try {
    *self = std::thread([this, self, first = std::move(task)]() mutable { work(self, std::move(first)); });
  } catch (...) {
    threads_.erase(self);
    throw;
  }
}

void ThreadCache::work(Thread self, std::function<void()> task) {
  while (task) {
    task();
    task = nullptr; // what it holds is released before the thread sleeps
    if (!becomeIdle())
      break;
    task = promised_.take();
  }
  const Locked locked(lock_);
  finished_.splice(finished_.end(), threads_, self);
  changed_.notify_all();
}

bool ThreadCache::becomeIdle() {
  const Locked locked(lock_);
  if (idle_ >= mostIdle_)
    return false;
  ++idle_;
  return true;
}

void ThreadCache::joinFinished() {
  std::list<std::thread> finished;
  {
    const Locked locked(lock_);
    finished.swap(finished_);
  }
  for (auto &thread : finished)
    thread.join();
}

} // namespace fennick
