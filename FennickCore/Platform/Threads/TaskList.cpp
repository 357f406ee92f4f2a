#include "FennickCore/Platform/Threads/TaskList.h"

#include <utility>

namespace fennick {

void TaskList::add(std::function<void()> task) {
  {
    const Locked locked(lock_);
    tasks_.push_back(std::move(task));
  }
  changed_.notify_one();
}

std::function<void()> TaskList::take() {
  Locked locked(lock_);
  while (tasks_.empty() && !ended_)
    locked.wait(changed_);
  if (tasks_.empty())
    return {};
  auto task = std::move(tasks_.front());
  tasks_.pop_front();
  return task;
}

void TaskList::end() {
  {
    const Locked locked(lock_);
    ended_ = true;
  }
  changed_.notify_all();
}

} // namespace fennick
