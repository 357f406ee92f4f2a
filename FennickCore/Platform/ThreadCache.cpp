#include "FennickCore/Platform/ThreadCache.h"

#include <utility>

namespace fennick {

ThreadCache::~ThreadCache() {
  {
    const Locked locked(lock_);
    ending_ = true;
  }
  changed_.notify_all();
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
  const Locked locked(lock_);
  tasks_.push_back(std::move(task));
  if (idle_ > 0) {
    --idle_;
    changed_.notify_one();
    return;
  }
  try {
    startThread();
  } catch (...) {
    tasks_.pop_back();
    throw;
  }
}

void ThreadCache::startThread() {
  const auto self = threads_.emplace(threads_.end());
  try {
    *self = std::thread([this, self] { work(self); });
  } catch (...) {
    threads_.erase(self);
    throw;
  }
}

void ThreadCache::work(std::list<std::thread>::iterator self) {
  std::function<void()> task;
  while (nextTask(task)) {
    task();
    task = nullptr;
    const Locked locked(lock_);
    if (idle_ >= mostIdle_ || ending_)
      break;
    ++idle_;
  }
  const Locked locked(lock_);
  finished_.splice(finished_.end(), threads_, self);
  changed_.notify_all();
}

// Waits for a task; false when the cache is ending and nothing is left to do.
bool ThreadCache::nextTask(std::function<void()> &task) {
  Locked locked(lock_);
  while (tasks_.empty() && !ending_)
    locked.wait(changed_);
  if (tasks_.empty())
    return false;
  task = std::move(tasks_.front());
  tasks_.pop_front();
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
