#include "FennickCore/Imaging/DecoderPool.h"

#include "FennickCore/Platform/Files/Directories.h"
#include "FennickCore/Platform/Files/MemoryFile.h"
#include "FennickCore/Platform/System/Log.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <new>
#include <span>
#include <system_error>
#include <utility>

namespace fennick {

namespace {

using std::chrono::steady_clock;

std::unexpected<PictureError> fail(PictureFault fault, std::string detail) {
  return std::unexpected(PictureError{.fault = fault, .detail = std::move(detail)});
}

// Nothing of the user's environment, such as home or display. VIPSHOME prevents libvips from loading further
// loaders.
std::vector<std::string> environment() { return {"LC_ALL=C", "TZ=UTC", "VIPSHOME=/nonexistent"}; }

using Deadline = steady_clock::time_point;

Deadline deadlineIn(Seconds length) {
  constexpr Seconds kMost{1e6}; // so that no time-out overflows the clock
  return steady_clock::now() + std::chrono::duration_cast<steady_clock::duration>(std::min(length, kMost));
}

Seconds untilThen(Deadline deadline) { return deadline - steady_clock::now(); }

// The part of a time-out for the search of a new encoding; the rest is for checking and returning it.
constexpr double kSearchShare = 0.9;

// Returns the content of the memory file; empty if it is not one, is too long, or there is no memory for it.
std::string resultOf(const FileDescriptor &attached, std::int64_t most) {
  try {
    return readSealedMemoryFile(attached, most).value_or(std::string());
  } catch (const std::bad_alloc &) {
    return {};
  }
}

std::string_view text(std::span<const std::byte> message) {
  return {reinterpret_cast<const char *>(message.data()), message.size()};
}

} // namespace

std::filesystem::path imagingProgram() { return programDirectory() / "tevrin-imaging"; }

DecoderPool::~DecoderPool() {
  stop();
  std::thread retirement;
  {
    const Locked locked(lock_);
    retirement = std::move(retirement_);
  }
  if (retirement.joinable())
    retirement.join();
}

PictureResult<PictureFacts> DecoderPool::facts(const std::filesystem::path &file) {
  return askFacts(file, {.headerOnly = false});
}

PictureResult<PictureFacts> DecoderPool::headerFacts(const std::filesystem::path &file) {
  return askFacts(file, {.headerOnly = true});
}

PictureResult<PictureFacts> DecoderPool::askFacts(const std::filesystem::path &file,
                                                  const wire::FactsRequest &request) {
  auto reply = ask(file, {.request = request, .timeout = options_.factsTimeout});
  if (!reply)
    return std::unexpected(std::move(reply.error()));
  return reply->answer.facts;
}

PictureResult<PictureDetails> DecoderPool::details(const std::filesystem::path &file) {
  auto reply = ask(file, {.request = wire::DetailsRequest{}, .timeout = options_.factsTimeout});
  if (!reply)
    return std::unexpected(std::move(reply.error()));
  return std::move(reply->answer.details);
}

PictureResult<std::string> DecoderPool::thumbnail(const std::filesystem::path &file, std::int64_t maxPixel,
                                                  double quality) {
  auto reply = ask(file, {.request = wire::ThumbnailRequest{.maxPixel = maxPixel, .quality = quality},
                          .timeout = options_.thumbnailTimeout,
                          .mostBytes = wire::kMostThumbnailBytes,
                          .purpose = Purpose::thumbnail});
  if (!reply)
    return std::unexpected(std::move(reply.error()));
  return std::move(reply->bytes);
}

PictureResult<Rendering> DecoderPool::render(const std::filesystem::path &file, const RenderRequest &request,
                                             Seconds timeout) {
  RenderRequest inTime = request;
  inTime.searchTime = std::min(request.searchTime.value_or(timeout), kSearchShare * timeout);
  auto reply = ask(file, {.request = inTime,
                          .timeout = timeout,
                          .mostBytes = wire::kMostResultBytes,
                          .purpose = Purpose::replacement});
  if (!reply)
    return std::unexpected(std::move(reply.error()));
  return Rendering{.bytes = std::move(reply->bytes),
                   .longEdge = reply->answer.longEdge,
                   .quality = reply->answer.quality,
                   .withinMaxBytes = reply->answer.withinMaxBytes,
                   .losesVideo = reply->answer.losesVideo,
                   .losesGainMap = reply->answer.losesGainMap};
}

PictureResult<std::string> DecoderPool::withOrientation(const std::filesystem::path &file,
                                                        std::int64_t orientation) {
  auto reply = ask(file, {.request = wire::OrientationRequest{.orientation = orientation},
                          .timeout = options_.orientationTimeout,
                          .mostBytes = wire::kMostResultBytes,
                          .purpose = Purpose::replacement});
  if (!reply)
    return std::unexpected(std::move(reply.error()));
  return std::move(reply->bytes);
}

bool DecoderPool::canEncodeHEIC() {
  {
    const Locked locked(lock_);
    if (encodesHEIC_)
      return *encodesHEIC_;
  }
  if (auto worker = acquire(Purpose::facts))
    release(std::move(*worker));
  const Locked locked(lock_);
  return encodesHEIC_.value_or(false);
}

std::size_t DecoderPool::processCount() const {
  const Locked locked(lock_);
  return alive_;
}

PictureResult<DecoderPool::Reply> DecoderPool::ask(const std::filesystem::path &file, const Task &task) {
  const auto opened = ReadableFile::open(file);
  if (!opened)
    return fail(PictureFault::unreadable, opened.error().message());
  auto worker = acquire(task.purpose);
  if (!worker)
    return std::unexpected(std::move(worker.error()));
  auto reply = converse(**worker, opened->descriptor(), task);
  if (reply && task.purpose != Purpose::replacement) {
    release(std::move(*worker));
  } else {
    const std::string death = (*worker)->process.kill();
    discard(std::move(*worker));
    if (!reply && reply.error().detail.empty())
      reply.error().detail = death;
  }
  if (!reply) {
    log(fmt::format("imaging: {}: {}", file.filename().string(), reply.error().detail));
    return reply;
  }
  if (auto &error = reply->answer.error; error.has_value())
    return std::unexpected(std::move(*error));
  return reply;
}

// After any error the process cannot be used again.
PictureResult<DecoderPool::Reply> DecoderPool::converse(Worker &worker, const FileDescriptor &file,
                                                        const Task &task) {
  const auto deadline = deadlineIn(task.timeout);
  const std::string message = wire::encoded(task.request);
  if (!worker.socket.send(std::as_bytes(std::span(message)), &file))
    return gone();
  std::array<std::byte, wire::kMostMessageBytes> buffer{};
  const auto received = worker.socket.receive(buffer, untilThen(deadline));
  if (!received)
    return fail(received.error() == std::errc::timed_out ? PictureFault::timedOut : PictureFault::crashed,
                received.error().message());
  if (received->bytes == 0)
    return gone();
  auto answer = wire::decodedAnswer(text(std::span(buffer).first(received->bytes)));
  if (!answer)
    return fail(PictureFault::crashed, "the answer makes no sense");
  Reply reply{.answer = std::move(*answer), .bytes = {}};
  if (reply.answer.error || task.mostBytes == 0)
    return reply;
  auto bytes = resultOf(received->attached, task.mostBytes);
  if (bytes.empty())
    return fail(PictureFault::crashed, "the answer came without its bytes");
  reply.bytes = std::move(bytes);
  return reply;
}

// Returns why the process has gone.
std::unexpected<PictureError> DecoderPool::gone() const {
  const Locked locked(lock_);
  return fail(ending_ ? PictureFault::stopped : PictureFault::crashed, {});
}

PictureResult<DecoderPool::WorkerPtr> DecoderPool::acquire(Purpose purpose) {
  auto worker = takeIdle(purpose);
  if (!worker || *worker)
    return worker;
  worker = start();
  if (!worker)
    giveUp();
  return worker;
}

std::size_t DecoderPool::mostAtWork(Purpose purpose) const {
  const std::size_t most = std::max(options_.mostProcesses, std::size_t{1});
  switch (purpose) {
  case Purpose::thumbnail:
    return std::clamp(options_.mostForThumbnails, std::size_t{1}, most);
  case Purpose::facts:
    return std::min(options_.mostForThumbnails + 1, most);
  case Purpose::replacement:
    break;
  }
  return most;
}

bool DecoderPool::isNext(Purpose purpose, std::uint64_t number) const {
  return waiting_.at(static_cast<std::size_t>(purpose)).front() == number &&
         alive_ - idle_.size() < mostAtWork(purpose);
}

// Returns the reason if there will be no process for the caller.
std::optional<PictureError> DecoderPool::awaitFreeProcess(Locked &locked, Purpose purpose) {
  auto &waiting = waiting_.at(static_cast<std::size_t>(purpose));
  const std::uint64_t number = ++lastNumber_;
  waiting.push_back(number);
  const auto deadline = deadlineIn(options_.waitTimeout);
  bool next = isNext(purpose, number);
  while (!ending_ && !next && untilThen(deadline) > Seconds(0)) {
    locked.waitFor(changed_, untilThen(deadline));
    next = isNext(purpose, number);
  }
  std::erase(waiting, number);
  changed_.notify_all(); // another request is the first now
  if (ending_)
    return PictureError{.fault = PictureFault::stopped, .detail = "the program ends"};
  if (!next)
    return PictureError{.fault = PictureFault::busy, .detail = "all processes are at work"};
  return std::nullopt;
}

// Takes the process that was used last. Returns null if a new one has to be started: because the request
// needs a process of its own, for which an idle one is ended if there are too many, or because none is idle.
PictureResult<DecoderPool::WorkerPtr> DecoderPool::takeIdle(Purpose purpose) {
  std::list<WorkerPtr> ended; // destroyed after the lock, since ending a process takes a moment
  Locked locked(lock_);
  if (auto error = awaitFreeProcess(locked, purpose))
    return std::unexpected(std::move(*error));
  while (purpose != Purpose::replacement && !idle_.empty()) {
    auto worker = std::move(idle_.back());
    idle_.pop_back();
    if (worker->socket.isConnected()) {
      atWork_.insert(worker.get());
      return worker;
    }
    --alive_; // it was ended while idle
    ended.push_back(std::move(worker));
  }
  if (alive_ >= options_.mostProcesses && !idle_.empty()) {
    ended.splice(ended.end(), idle_, idle_.begin());
    --alive_;
  }
  ++alive_;
  return nullptr;
}

PictureResult<DecoderPool::WorkerPtr> DecoderPool::start() {
  auto ends = MessageSocket::makePair();
  if (!ends)
    return fail(PictureFault::noDecoder, ends.error().message());
  auto process =
      ChildProcess::start(options_.program, options_.arguments, environment(), ends->second.descriptor());
  if (!process) {
    log(fmt::format("imaging: cannot start {}: {}", options_.program.string(), process.error().message()));
    return fail(PictureFault::noDecoder, process.error().message());
  }
  auto worker = std::make_unique<Worker>(std::move(*process), std::move(ends->first), steady_clock::now());
  {
    const Locked locked(lock_);
    if (ending_)
      return fail(PictureFault::stopped, "the program ends");
    atWork_.insert(worker.get());
  }
  // Only the child keeps the other end, so that its death is noticed.
  ends->second = MessageSocket(FileDescriptor());
  return greeted(std::move(worker));
}

// Returns `worker` after its greeting.
PictureResult<DecoderPool::WorkerPtr> DecoderPool::greeted(WorkerPtr worker) {
  std::array<std::byte, wire::kMostMessageBytes> buffer{};
  const auto received = worker->socket.receive(buffer, options_.startTimeout);
  const auto hello =
      received ? wire::decodedHello(text(std::span(buffer).first(received->bytes))) : std::nullopt;
  const std::string reason = hello ? hello->detail : worker->process.kill();
  const Locked locked(lock_);
  if (hello && hello->lockedDown) {
    encodesHEIC_ = hello->encodesHEIC;
    return worker;
  }
  atWork_.erase(worker.get());
  if (ending_)
    return fail(PictureFault::stopped, "the program ends");
  log(fmt::format("imaging: no decoding, the process could not be locked down: {}", reason));
  return fail(PictureFault::noDecoder, reason);
}

void DecoderPool::release(WorkerPtr worker) {
  worker->idleSince = steady_clock::now();
  {
    const Locked locked(lock_);
    atWork_.erase(worker.get());
    try {
      if (!ending_ && !retirement_.joinable())
        retirement_ = std::thread([this] { retireIdle(); });
    } catch (const std::system_error &error) {
      log(fmt::format("imaging: a process is not kept, nobody would end it later: {}", error.what()));
    }
    if (!ending_ && retirement_.joinable())
      idle_.push_back(std::move(worker));
    else
      --alive_;
  }
  changed_.notify_all();
}

void DecoderPool::discard(WorkerPtr worker) {
  {
    const Locked locked(lock_);
    atWork_.erase(worker.get());
  }
  giveUp();
}

// There is one process fewer; a waiting request may start another.
void DecoderPool::giveUp() {
  {
    const Locked locked(lock_);
    --alive_;
  }
  changed_.notify_all();
}

void DecoderPool::stop() {
  const Locked locked(lock_);
  ending_ = true;
  for (const Worker *worker : atWork_)
    worker->socket.disconnect(); // its caller notices and ends it
  changed_.notify_all();
}

// Sleeps until the process that has been idle longest is due, or without limit if none is idle.
void DecoderPool::retireIdle() {
  while (true) {
    WorkerPtr retired; // destroyed after the lock is released
    Locked locked(lock_);
    if (ending_)
      return;
    if (idle_.empty()) {
      locked.wait(changed_);
      continue;
    }
    const Seconds left = idle_.front()->idleSince + options_.idleTime - steady_clock::now();
    if (left > Seconds(0)) {
      locked.waitFor(changed_, left);
      continue;
    }
    retired = std::move(idle_.front());
    idle_.pop_front();
    --alive_;
    changed_.notify_all();
  }
}

} // namespace fennick
