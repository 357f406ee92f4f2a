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

// Runs jobs on many files one after another off the main thread, with progress for the user and a way to
// stop. Main thread, except for Ticket.
class FileJobs : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool running READ running NOTIFY changed)
  // Steps of all running and waiting jobs: usually files.
  Q_PROPERTY(int done READ done NOTIFY changed)
  Q_PROPERTY(int total READ total NOTIFY changed)
  Q_PROPERTY(bool stopping READ stopping NOTIFY changed)

public:
  // Reports the progress of one job. For the thread that runs the job.
  class Ticket {
  public:
    // Reports that `steps` steps are done. Returns false if the user stopped the job: it must return then.
    bool reached(int steps) {
      done_ = steps;
      if (!announced_.exchange(true))
        announce_();
      return !stopped_;
    }

  private:
    friend class FileJobs;
    int total_ = 0; // for the main thread only
    std::atomic<int> done_ = 0;
    std::atomic<bool> stopped_ = false;
    std::atomic<bool> announced_ = false;
    std::function<void()> announce_;
  };

  explicit FileJobs(fennick::MainQueue &mainQueue) : mainQueue_(mainQueue) {} // which outlives the object
  // Stops the running job and waits for its current step.
  ~FileJobs() override;
  FileJobs(const FileJobs &) = delete;
  FileJobs &operator=(const FileJobs &) = delete;

  // Runs `work` with a Ticket once all earlier jobs are done, then `finish` with its result on the main
  // thread.
  template <typename Work, typename Finish>
  void run(int steps, Work work, Finish finish) {
    const auto ticket = begin(steps);
    post(ticket, [ticket, work = std::move(work), finish = std::move(finish)]() -> std::function<void()> {
      auto result = std::make_shared<decltype(work(*ticket))>(work(*ticket));
      return [result, finish] { finish(std::move(*result)); };
    });
  }

  // Runs a short query in the same order, without progress.
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
  // Stops all jobs started so far after their current step.
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
  std::unique_ptr<fennick::SerialQueue> queue_; // created with the first job; last: it uses the above
};

} // namespace quarrow
