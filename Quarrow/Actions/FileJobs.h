#pragma once

#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"

#include <QObject>

#include <atomic>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace quarrow {

// Work on many files, off the main thread and one piece after another, with its progress for people to watch
// and a way to stop it. Main thread, but for what is said of Ticket.
class FileJobs : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool running READ running NOTIFY changed)
  // Steps of all work that is under way or waits: usually files.
  Q_PROPERTY(int done READ done NOTIFY changed)
  Q_PROPERTY(int total READ total NOTIFY changed)
  Q_PROPERTY(bool stopping READ stopping NOTIFY changed)

public:
  // How one piece of work tells of itself; on the thread that does it.
  class Ticket {
  public:
    // So many steps are done. False: somebody stopped the work, and it ends here.
    bool reached(int steps) {
      done_ = steps;
      if (!announced_.exchange(true))
        announce_();
      return !stopped_;
    }

  private:
    friend class FileJobs;
    int total_ = 0; // of the main thread
    std::atomic<int> done_ = 0;
    std::atomic<bool> stopped_ = false;
    std::atomic<bool> announced_ = false;
    std::function<void()> announce_;
  };

  explicit FileJobs(fennick::MainQueue &mainQueue) : mainQueue_(mainQueue) {} // which outlives the object
  // Stops what is under way and waits for the step that it is in.
  ~FileJobs() override;
  FileJobs(const FileJobs &) = delete;
  FileJobs &operator=(const FileJobs &) = delete;

  // `work` gets a Ticket and runs once all earlier work is done; `finish` gets its result on the main thread.
  template <typename Work, typename Finish>
  void run(int steps, Work work, Finish finish) {
    const auto ticket = begin(steps);
    post(ticket, [ticket, work = std::move(work), finish = std::move(finish)]() -> std::function<void()> {
      auto result = std::make_shared<decltype(work(*ticket))>(work(*ticket));
      return [result, finish] { finish(std::move(*result)); };
    });
  }

  // Questions that take a moment go the same way, without being watched.
  template <typename Ask, typename Answer>
  void ask(Ask question, Answer answered) {
    post(nullptr,
         [question = std::move(question), answered = std::move(answered)]() -> std::function<void()> {
           auto answer = std::make_shared<decltype(question())>(question());
           return [answer, answered] { answered(std::move(*answer)); };
         });
  }

  [[nodiscard]] bool running() const { return !tickets_.empty(); }
  [[nodiscard]] int done() const;
  [[nodiscard]] int total() const;
  [[nodiscard]] bool stopping() const;
  // All work that was begun so far ends after the step that it is in.
  Q_INVOKABLE void stop();

signals:
  void changed();

private:
  using Tickets = std::vector<std::shared_ptr<Ticket>>;

  [[nodiscard]] std::shared_ptr<Ticket> begin(int steps);
  void post(std::shared_ptr<Ticket> ticket, std::function<std::function<void()>()> work);
  void end(const std::shared_ptr<Ticket> &ticket);

  fennick::MainQueue &mainQueue_;
  fennick::Lifetime lifetime_;
  Tickets tickets_;                             // of work that is not over
  int finished_ = 0;                            // steps of work that is over, since last there was none
  std::unique_ptr<fennick::SerialQueue> queue_; // from the first work on; last: it uses the above
};

} // namespace quarrow
