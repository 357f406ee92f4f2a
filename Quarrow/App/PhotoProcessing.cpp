#include "Quarrow/App/PhotoProcessing.h"

#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Storage/PhotoItem.h"
#include "FennickCore/Storage/PhotoOrigin.h"
#include "Quarrow/App/ReceivedNote.h"

#include <fmt/format.h>

#include <chrono>
#include <utility>

namespace quarrow {

using fennick::Locked;
using fennick::PrivateData;
using fennick::ProcessResult;
using fennick::Seconds;
using fennick::ImagePipeline::PipelineError;

namespace {

constexpr Seconds kTimeout{90};
constexpr Seconds kAnnouncementDelay{0.5};
constexpr int kMostRounds = 3; // for a photo that another program keeps changing

class Journal final : public fennick::ImagePipeline::CommitJournal {
public:
  Journal(fennick::PendingPhotos &pending, const std::string &entry, PrivateData removed)
      : pending_(pending), entry_(entry),
        remaining_{.location = !removed.location, .metadata = !removed.metadata} {}

  fennick::IOResult<void> willPlace(const std::filesystem::path &, const std::filesystem::path &output,
                                    const std::filesystem::path &target) override {
    return pending_.willPlace(entry_, output, target, remaining_);
  }
  void didNotPlace(const std::filesystem::path &) override { pending_.didNotPlace(entry_); }

private:
  fennick::PendingPhotos &pending_;
  const std::string &entry_;
  const PrivateData remaining_;
};

bool failedWith(const ProcessResult &result, PipelineError::Kind kind) {
  const auto *error = result.failure ? std::get_if<PipelineError>(&*result.failure) : nullptr;
  return error != nullptr && error->kind == kind;
}

const std::error_code *diskError(const ProcessResult &result) {
  return result.failure ? std::get_if<std::error_code>(&*result.failure) : nullptr;
}

// Returns whether another run may succeed, because nothing was learned about the picture.
bool mayWorkLater(const ProcessResult &result) {
  return diskError(result) != nullptr || failedWith(result, PipelineError::Kind::noDecoder) ||
         failedWith(result, PipelineError::Kind::busy);
}

ProcessResult stoppedResult(const std::filesystem::path &file) {
  const PipelineError stopped{.kind = PipelineError::Kind::stopped};
  return {.finalURL = file,
          .note = "未处理 / skipped: " + fennick::ImagePipeline::description(stopped),
          .failure = stopped};
}

} // namespace

PhotoProcessing::PhotoProcessing(const Services &services, Observer observer)
    : services_(services), observer_(std::move(observer)) {}

PhotoProcessing::~PhotoProcessing() { end(); }

void PhotoProcessing::add(const fennick::UploadRecord &upload) {
  post({.entry = upload.pending, .upload = upload});
}

void PhotoProcessing::post(Job job) {
  count(1);
  queue_.post([this, posted = std::move(job)] { run(posted); });
}

void PhotoProcessing::look() {
  {
    const Locked locked(lock_);
    if (ending_ || std::exchange(looks_, true))
      return;
  }
  if (!lookQueue_)
    lookQueue_ = std::make_unique<fennick::SerialQueue>("fennick.pending");
  lookQueue_->post([this] {
    {
      const Locked locked(lock_);
      looks_ = false;
      if (ending_)
        return;
    }
    services_.pending.follow();
    resume(services_.pending.takeOver());
  });
}

void PhotoProcessing::takeOver(const std::filesystem::path &incoming, const fennick::IncomingHold &hold) {
  resume(services_.pending.takeOver(incoming, hold));
}

void PhotoProcessing::resume(const std::vector<std::string> &entries) {
  for (const auto &entry : entries)
    post({.entry = entry});
}

void PhotoProcessing::finishCurrent(Seconds most) {
  const auto deadline = std::chrono::steady_clock::now() + most;
  Locked locked(lock_);
  ending_ = true;
  while (working_) {
    const Seconds left = deadline - std::chrono::steady_clock::now();
    if (left <= Seconds(0))
      return;
    locked.waitFor(changed_, left);
  }
}

void PhotoProcessing::end() {
  finishCurrent(Seconds(0));
  lookQueue_.reset(); // first: it may post to the other
  Locked locked(lock_);
  while (waiting_ > 0)
    locked.wait(changed_);
}

// Runs on the queue, like everything below.
void PhotoProcessing::run(const Job &job) {
  bool ends = false;
  {
    const Locked locked(lock_);
    ends = ending_;
    working_ = !ends;
  }
  auto ending = Ending::left;
  if (ends)
    leave(job);
  else
    for (int round = 1; (ending = process(job, round)) == Ending::again; ++round)
      ;
  bool isLast = false;
  {
    const Locked locked(lock_);
    working_ = false;
    isLast = waiting_ == 1 && !ending_;
    changed_.notify_all();
  }
  count(-1);
  if (isLast)
    resume(services_.pending
               .takeOver()); // photos that could not be taken over while others worked in the folder
}

void PhotoProcessing::leave(const Job &job) {
  if (!job.upload || services_.pending.isRecorded(job.entry))
    return services_.pending.postpone(job.entry);
  const auto result = stoppedResult(job.upload->url);
  writeOrigin(result.finalURL, originOf(*job.upload, result));
  std::ignore = services_.pending.finish(job.entry, result.finalURL, {}, {});
  report({.upload = *job.upload, .result = result, .left = {}});
}

PhotoProcessing::Ending PhotoProcessing::process(const Job &job, int round) {
  auto &pending = services_.pending;
  const auto found = pending.begin(job.entry);
  if (!found)
    return Ending::left;
  const PrivateData removed = found->options.dataToRemove();
  auto result = work(job.entry, *found);
  const bool isStopped = failedWith(result, PipelineError::Kind::stopped);
  if (isStopped && pending.isRecorded(job.entry)) {
    pending.postpone(job.entry);
    return Ending::left;
  }
  const PrivateData left{.location = removed.location && result.remaining.location,
                         .metadata = removed.metadata && result.remaining.metadata};
  const bool isGone =
      diskError(result) != nullptr && *diskError(result) == std::errc::no_such_file_or_directory;
  if (left.any() && isGone && round < kMostRounds)
    return Ending::again;      // renamed or changed meanwhile
  if (isGone && !job.upload) { // before this run
    std::ignore = pending.finish(job.entry, result.finalURL, result.remaining, removed);
    return Ending::left;
  }
  Finished finished{
      .upload = found->upload, .result = std::move(result), .left = left, .resumed = !job.upload};
  writeOrigin(finished.result.finalURL, originOf(finished.upload, finished.result, left));
  if (left.any() && !isGone && mayWorkLater(finished.result))
    pending.postpone(job.entry);
  else if (!pending.finish(job.entry, finished.result.finalURL, finished.result.remaining, removed))
    return Ending::again;
  report(std::move(finished));
  return Ending::reported;
}

ProcessResult PhotoProcessing::work(const std::string &entry, const fennick::PendingPhotos::Work &work) {
  Journal journal(services_.pending, entry, work.options.dataToRemove());
  const fennick::ImagePipeline::Services services{
      .decoder = services_.decoder, .files = services_.files, .trash = &services_.trash, .journal = &journal};
  const auto &file = work.upload.url;
  if (!work.placed) {
    auto result = fennick::ImagePipeline::process(file, work.options, kTimeout, services);
    if (fennick::isVideoName(file.filename().native()))
      result.remaining = {}; // phones see no videos
    return result;
  }
  auto completed = fennick::ImagePipeline::completeCommit(file, work.placed->target, work.options, services);
  if (!completed) {
    fennick::log(fmt::format("cannot complete {}: {}", file.string(), completed.error().message()));
    return {.finalURL = file, .failure = completed.error()};
  }
  completed->remaining = work.placed->remaining;
  return *completed;
}

void PhotoProcessing::report(Finished finished) {
  observer_.named(finished.result.finalURL);
  postToMain(Seconds(0), [this, done = std::move(finished)] { observer_.finished(done); });
}

// The change to zero is announced without delay.
void PhotoProcessing::count(int change) {
  bool waits = true;
  {
    const Locked locked(lock_);
    waiting_ += change;
    changed_.notify_all();
    waits = waiting_ > 0;
    if (ending_ || (std::exchange(announces_, true) && waits))
      return;
  }
  postToMain(waits ? kAnnouncementDelay : Seconds(0), [this] { announceCount(); });
}

void PhotoProcessing::announceCount() {
  int photos = 0;
  {
    const Locked locked(lock_);
    announces_ = false;
    photos = waiting_;
  }
  observer_.waiting(photos);
}

void PhotoProcessing::postToMain(Seconds delay, std::function<void()> task) {
  services_.mainQueue.postAfter(delay, lifetime_.guard(std::move(task)));
}

} // namespace quarrow
