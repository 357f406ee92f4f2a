#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Threads/Mutex.h"

#include <condition_variable>
#include <functional>
#include <string>
#include <utility>

namespace fennick::test {

// Bytes that begin and end like a JPEG.
inline std::string smallJPEG(const std::string &content) { return "\xFF\xD8" + content + "\xFF\xD9"; }

// A decoder with configured answers for all files that counts its calls. Any thread.
class FakeDecoder : public PictureDecoder {
public:
  static constexpr auto kFault = [](PictureFault fault) {
    return std::unexpected(PictureError{.fault = fault, .detail = {}});
  };

  void setFacts(PictureResult<PictureFacts> facts) { set(facts_, std::move(facts)); }
  void setDetails(PictureResult<PictureDetails> details) { set(details_, std::move(details)); }
  void setThumbnail(PictureResult<std::string> bytes) { set(thumbnail_, std::move(bytes)); }
  void setRendering(PictureResult<Rendering> rendering) { set(rendering_, std::move(rendering)); }
  [[nodiscard]] RenderRequest request() const {
    const Locked locked(lock_);
    return request_;
  }
  // The answer of `withOrientation`, to which the orientation is appended.
  void setOriented(PictureResult<std::string> bytes) { set(oriented_, std::move(bytes)); }
  // Runs `action` at the start of every later call, without a lock held.
  void before(std::function<void()> action) { set(before_, std::move(action)); }

  // Blocks every later call until `release`.
  void hold() { set(held_, true); }
  void release() {
    set(held_, false);
    changed_.notify_all();
  }
  // Returns once so many calls are blocked.
  void awaitHeld(int callers) {
    Locked locked(lock_);
    while (waiting_ < callers)
      locked.wait(changed_);
  }

  // The number of calls, and the most at the same time.
  [[nodiscard]] int calls() const {
    const Locked locked(lock_);
    return calls_;
  }
  [[nodiscard]] int mostAtOnce() const {
    const Locked locked(lock_);
    return mostAtOnce_;
  }

  PictureResult<PictureFacts> facts(const std::filesystem::path &) override { return answer(facts_); }
  PictureResult<PictureDetails> details(const std::filesystem::path &) override { return answer(details_); }
  PictureResult<std::string> thumbnail(const std::filesystem::path &, std::int64_t, double) override {
    return answer(thumbnail_);
  }
  PictureResult<Rendering> render(const std::filesystem::path &, const RenderRequest &request,
                                  Seconds) override {
    set(request_, request);
    return answer(rendering_);
  }
  PictureResult<std::string> withOrientation(const std::filesystem::path &,
                                             std::int64_t orientation) override {
    auto result = answer(oriented_);
    if (result)
      *result += std::to_string(orientation);
    return result;
  }
  bool canEncodeHEIC() override { return encodesHEIC; }

  bool encodesHEIC = true;

private:
  template <typename T>
  void set(T &member, T value) {
    const Locked locked(lock_);
    member = std::move(value);
  }

  template <typename T>
  T answer(const T &value) {
    std::function<void()> action;
    {
      Locked locked(lock_);
      ++calls_;
      mostAtOnce_ = std::max(mostAtOnce_, ++waiting_);
      changed_.notify_all();
      while (held_)
        locked.wait(changed_);
      --waiting_;
      action = before_;
    }
    if (action)
      action();
    const Locked locked(lock_);
    return value;
  }

  mutable Mutex lock_;
  std::condition_variable changed_;
  PictureResult<PictureFacts> facts_ =
      PictureFacts{.type = PictureType::jpeg, .frames = 1, .width = 40, .height = 30, .orientation = {}};
  PictureResult<PictureDetails> details_;
  PictureResult<std::string> thumbnail_ = smallJPEG("small");
  PictureResult<std::string> oriented_ = "turned ";
  PictureResult<Rendering> rendering_ = kFault(PictureFault::unencodable);
  RenderRequest request_;
  std::function<void()> before_;
  int calls_ = 0;
  int waiting_ = 0;
  int mostAtOnce_ = 0;
  bool held_ = false;
};

} // namespace fennick::test
