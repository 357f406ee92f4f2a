#pragma once

#include "FennickCore/Imaging/ImagingWire.h"
#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Processes/ChildProcess.h"
#include "FennickCore/Platform/Processes/MessageSocket.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Mutex.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <expected>
#include <filesystem>
#include <list>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace fennick {

// Reads pictures in sandboxed processes that can access nothing but the picture they are handed. The
// processes are started on first use, kept for further pictures, and ended after some idle time. A process
// that crashes, times out or sends an invalid answer is ended, which affects only its picture. A picture that
// replaces a photo is made by a process that has read that photo alone, so that no picture can forge another.
//
// Requests that find no free process wait in the order of their arrival. Thumbnails may occupy
// `mostForThumbnails` processes, reading facts may use one more, and encodings that replace photos may use
// all: the processing of received photos does not wait behind thumbnails, however many a phone requests. A
// request that has waited for `waitTimeout` fails with `busy`. The time-outs of the requests begin when a
// process is ready, so that waiting never counts against a picture.
//
// Any thread; guarded by its own lock. The destructor ends the processes; no call may be running then.
class DecoderPool final : public PictureDecoder {
public:
  struct Options {
    std::filesystem::path program;        // the imaging process
    std::vector<std::string> arguments{}; // passed to it
    // Thumbnails of two sizes, 4 and 2 at once (see Thumbnails.h), and two more for facts and new encodings.
    std::size_t mostProcesses = 8; // at work and idle
    std::size_t mostForThumbnails =
        6;                        // at least 2 less than `mostProcesses`, so that other requests do not wait
    Seconds idleTime{30};         // how long a process with nothing to do is kept
    Seconds waitTimeout{60};      // for a free process: twice the longest that a thumbnail occupies one
    Seconds startTimeout{20};     // a computer that is swapping still gets it started in this time
    Seconds factsTimeout{20};     // headers only; a slow network drive has to deliver them
    Seconds thumbnailTimeout{30}; // ten times what the largest picture takes
    Seconds orientationTimeout{30}; // copying, no decoding
  };

  explicit DecoderPool(Options options) : options_(std::move(options)) {}
  ~DecoderPool() override;
  DecoderPool(const DecoderPool &) = delete;
  DecoderPool &operator=(const DecoderPool &) = delete;

  PictureResult<PictureFacts> facts(const std::filesystem::path &file) override;
  PictureResult<PictureFacts> headerFacts(const std::filesystem::path &file) override;
  PictureResult<PictureDetails> details(const std::filesystem::path &file) override;
  PictureResult<std::string> thumbnail(const std::filesystem::path &file, std::int64_t maxPixel,
                                       double quality) override;
  PictureResult<Rendering> render(const std::filesystem::path &file, const RenderRequest &request,
                                  Seconds timeout) override;
  PictureResult<std::string> withOrientation(const std::filesystem::path &file,
                                             std::int64_t orientation) override;
  bool canEncodeHEIC() override;

  // Ends every process at once; running and later calls fail. For the end of the program.
  void stop();

  // The number of processes, busy or idle.
  [[nodiscard]] std::size_t processCount() const;

private:
  struct Worker {
    ChildProcess process;
    MessageSocket socket;
    std::chrono::steady_clock::time_point idleSince;
  };
  using WorkerPtr = std::unique_ptr<Worker>;

  // What a process is needed for. Later purposes may use processes that earlier ones may not.
  enum class Purpose : std::uint8_t { thumbnail, facts, replacement };
  static constexpr std::size_t kPurposes = 3;
  struct Task {
    wire::Request request;
    Seconds timeout;            // from the request to its answer
    std::int64_t mostBytes = 0; // of the result; 0: it has none
    Purpose purpose = Purpose::facts;
  };
  struct Reply {
    wire::Answer answer;
    std::string bytes; // content of the attached memory file; empty without one
  };

  PictureResult<Reply> ask(const std::filesystem::path &file, const Task &task);
  PictureResult<PictureFacts> askFacts(const std::filesystem::path &file, const wire::FactsRequest &request);
  PictureResult<Reply> converse(Worker &worker, const FileDescriptor &file, const Task &task);
  [[nodiscard]] std::unexpected<PictureError> gone() const;
  PictureResult<WorkerPtr> acquire(Purpose purpose);
  PictureResult<WorkerPtr> takeIdle(Purpose purpose);
  [[nodiscard]] std::optional<PictureError> awaitFreeProcess(Locked &locked, Purpose purpose) REQUIRES(lock_);
  [[nodiscard]] bool isNext(Purpose purpose, std::uint64_t number) const REQUIRES(lock_);
  [[nodiscard]] std::size_t mostAtWork(Purpose purpose) const;
  PictureResult<WorkerPtr> start();
  PictureResult<WorkerPtr> greeted(WorkerPtr worker);
  void release(WorkerPtr worker);
  void discard(WorkerPtr worker);
  void giveUp();
  void retireIdle();

  const Options options_;
  mutable Mutex lock_;
  std::condition_variable changed_;
  std::list<WorkerPtr> idle_ GUARDED_BY(lock_);       // used last comes last
  std::set<const Worker *> atWork_ GUARDED_BY(lock_); // including starting ones
  std::size_t alive_ GUARDED_BY(lock_) = 0;           // idle, at work and about to be started
  std::array<std::deque<std::uint64_t>, kPurposes> waiting_ GUARDED_BY(lock_); // numbers, first come first
  std::uint64_t lastNumber_ GUARDED_BY(lock_) = 0;
  std::optional<bool> encodesHEIC_ GUARDED_BY(lock_);
  bool ending_ GUARDED_BY(lock_) = false;
  std::thread retirement_ GUARDED_BY(lock_); // ends processes that have been idle for too long
};

// Returns the path of the imaging program, beside the running program.
[[nodiscard]] std::filesystem::path imagingProgram();

} // namespace fennick
