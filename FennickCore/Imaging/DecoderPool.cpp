#include "FennickCore/Imaging/DecoderPool.h"

#include "FennickCore/Platform/Directories.h"
#include "FennickCore/Platform/Log.h"
#include "FennickCore/Platform/MemoryFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>
#include <system_error>
#include <utility>

namespace fennick {

namespace {

using std::chrono::steady_clock;

std::unexpected<PictureError> fail(PictureFault fault, std::string detail) {
  return std::unexpected(PictureError{.fault = fault, .detail = std::move(detail)});
}

// Nothing of the user's: no home, no display. VIPSHOME keeps libvips from loading loaders of further formats.
std::vector<std::string> environment() { return {"LC_ALL=C", "TZ=UTC", "VIPSHOME=/nonexistent"}; }

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
  auto reply = ask(file, wire::FactsRequest{}, options_.factsTimeout);
  if (!reply)
    return std::unexpected(std::move(reply.error()));
  return reply->answer.facts;
}

PictureResult<std::string> DecoderPool::thumbnail(const std::filesystem::path &file, std::int64_t maxPixel,
                                                  double quality) {
  auto reply =
      ask(file, wire::ThumbnailRequest{.maxPixel = maxPixel, .quality = quality}, options_.thumbnailTimeout);
  if (!reply)
    return std::unexpected(std::move(reply.error()));
  return std::move(reply->bytes);
}

PictureResult<Rendering> DecoderPool::render(const std::filesystem::path &file, const RenderRequest &request,
                                             Seconds timeout) {
  auto reply = ask(file, request, timeout);
  if (!reply)
    return std::unexpected(std::move(reply.error()));
  return Rendering{.bytes = std::move(reply->bytes),
                   .longEdge = reply->answer.longEdge,
                   .quality = reply->answer.quality,
                   .withinMaxBytes = reply->answer.withinMaxBytes};
}

PictureResult<std::string> DecoderPool::withOrientation(const std::filesystem::path &file,
                                                        std::int64_t orientation) {
  auto reply = ask(file, wire::OrientationRequest{.orientation = orientation}, options_.orientationTimeout);
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
  if (auto worker = acquire())
    release(std::move(*worker));
  const Locked locked(lock_);
  return encodesHEIC_.value_or(false);
}

std::size_t DecoderPool::processCount() const {
  const Locked locked(lock_);
  return alive_;
}

PictureResult<DecoderPool::Reply> DecoderPool::ask(const std::filesystem::path &file,
                                                   const wire::Request &request, Seconds timeout) {
  const auto opened = ReadableFile::open(file);
  if (!opened)
    return fail(PictureFault::unreadable, opened.error().message());
  auto worker = acquire();
  if (!worker)
    return std::unexpected(std::move(worker.error()));
  auto reply = converse(**worker, opened->descriptor(), request, timeout);
  if (reply) {
    release(std::move(*worker));
    if (reply->answer.error)
      return std::unexpected(std::move(*reply->answer.error));
    return reply;
  }
  const std::string death = (*worker)->process.kill();
  discard(std::move(*worker));
  if (reply.error().fault == PictureFault::crashed && reply.error().detail.empty())
    reply.error().detail = death;
  log(fmt::format("imaging: {}: {}", file.filename().string(), reply.error().detail));
  return reply;
}

// Any error means that the process cannot be used any more.
PictureResult<DecoderPool::Reply> DecoderPool::converse(Worker &worker, const FileDescriptor &file,
                                                        const wire::Request &request, Seconds timeout) {
  const std::string message = wire::encoded(request);
  if (!worker.socket.send(std::as_bytes(std::span(message)), &file))
    return fail(PictureFault::crashed, {});
  std::array<std::byte, wire::kMostMessageBytes> buffer{};
  auto received = worker.socket.receive(buffer, timeout);
  if (!received)
    return fail(received.error() == std::errc::timed_out ? PictureFault::timedOut : PictureFault::crashed,
                received.error().message());
  if (received->bytes == 0)
    return fail(PictureFault::crashed, {});
  auto answer = wire::decodedAnswer(text(std::span(buffer).first(received->bytes)));
  if (!answer)
    return fail(PictureFault::crashed, "the answer makes no sense");
  Reply reply{.answer = std::move(*answer), .bytes = {}};
  const bool wantsBytes = !reply.answer.error && !std::holds_alternative<wire::FactsRequest>(request);
  if (wantsBytes) {
    auto bytes = readSealedMemoryFile(received->attached, wire::kMostResultBytes);
    if (!bytes || bytes->empty())
      return fail(PictureFault::crashed, "the answer came without its bytes");
    reply.bytes = std::move(*bytes);
  }
  return reply;
}

PictureResult<std::unique_ptr<DecoderPool::Worker>> DecoderPool::acquire() {
  auto worker = take();
  if (worker && *worker == nullptr) {
    worker = start();
    if (!worker)
      giveUp();
  }
  if (!worker)
    return worker;
  const Locked locked(lock_);
  if (ending_) {
    --alive_;
    return fail(PictureFault::noDecoder, "the program ends");
  }
  atWork_.insert(worker->get());
  return worker;
}

// The process used last is the warmest. Null when a new one is to be started, which happens only when all are
// at work.
PictureResult<std::unique_ptr<DecoderPool::Worker>> DecoderPool::take() {
  Locked locked(lock_);
  while (!ending_ && idle_.empty() && alive_ >= options_.mostProcesses)
    locked.wait(changed_);
  if (ending_)
    return fail(PictureFault::noDecoder, "the program ends");
  while (!idle_.empty()) {
    auto worker = std::move(idle_.back());
    idle_.pop_back();
    if (worker->socket.isConnected())
      return worker;
    --alive_; // somebody ended it while it was idle
  }
  ++alive_;
  return nullptr;
}

PictureResult<std::unique_ptr<DecoderPool::Worker>> DecoderPool::start() {
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
  // Only the child holds the other end from now on, so that its death is noticed.
  ends->second = MessageSocket(FileDescriptor());
  std::array<std::byte, wire::kMostMessageBytes> buffer{};
  const auto received = worker->socket.receive(buffer, options_.startTimeout);
  auto hello = received ? wire::decodedHello(text(std::span(buffer).first(received->bytes))) : std::nullopt;
  if (!hello || !hello->lockedDown) {
    const std::string reason = hello ? hello->detail : worker->process.kill();
    log(fmt::format("imaging: no decoding, the process could not be locked down: {}", reason));
    return fail(PictureFault::noDecoder, reason);
  }
  const Locked locked(lock_);
  encodesHEIC_ = hello->encodesHEIC;
  return worker;
}

void DecoderPool::release(std::unique_ptr<Worker> worker) {
  worker->idleSince = steady_clock::now();
  const Locked locked(lock_);
  atWork_.erase(worker.get());
  if (ending_) {
    --alive_;
    return;
  }
  idle_.push_back(std::move(worker));
  try {
    if (!retirement_.joinable())
      retirement_ = std::thread([this] { retireIdle(); });
  } catch (const std::system_error &) {
    idle_.pop_back(); // nobody would end it later
    --alive_;
  }
  changed_.notify_all();
}

void DecoderPool::discard(std::unique_ptr<Worker> worker) {
  {
    const Locked locked(lock_);
    atWork_.erase(worker.get());
  }
  giveUp();
}

// One process fewer; whoever waits may start another.
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
    worker->socket.disconnect(); // its caller sees it gone and ends it
  changed_.notify_all();
}

// Sleeps until the process that has been idle longest is due, without an end while none is idle.
void DecoderPool::retireIdle() {
  Locked locked(lock_);
  while (!ending_) {
    if (idle_.empty()) {
      locked.wait(changed_);
      continue;
    }
    const Seconds left = idle_.front()->idleSince + options_.idleTime - steady_clock::now();
    if (left > Seconds(0)) {
      locked.waitFor(changed_, left);
      continue;
    }
    idle_.pop_front();
    --alive_;
  }
}

} // namespace fennick
