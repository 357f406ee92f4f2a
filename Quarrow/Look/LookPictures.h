#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"
#include "FennickCore/Storage/PhotoOrigin.h"
#include "FennickCore/Storage/Thumbnails.h"

#include <QImage>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace quarrow {

// What is known of a file beyond its picture.
struct LookFacts {
  std::int64_t bytes = 0;
  fennick::Instant date{};                        // FileStatus::created
  std::optional<fennick::PictureFacts> picture{}; // absent for videos and for what cannot be read
  fennick::PictureDetails details{};
  std::optional<fennick::PhotoOrigin> origin{};
  std::optional<std::filesystem::path> original{}; // where the untouched file lies
};

// Reads what the quick look shows, off the main thread: pictures come from the locked-down decoder as JPEG,
// and only those are decoded here. Answers come on the main thread, in the order asked for each kind; what
// was asked before the last `forget` is not answered. Main thread.
class LookPictures {
public:
  using TakePicture = std::function<void(const QImage &)>; // null: it cannot be shown
  using TakeFacts = std::function<void(const LookFacts &)>;

  // Of the longer side of a picture for the screen, in pixels: the gallery's large size, kept on the disk.
  static constexpr std::int64_t kScreenPixels = fennick::Thumbnails::kLargePixels;
  // Most pixels of a picture in full: of its longer side, and in all - 192 MB of memory.
  static constexpr std::int64_t kMostSide = 8'192;
  static constexpr std::int64_t kMostPixels = 48'000'000;

  // All outlive the object.
  LookPictures(fennick::PictureDecoder &decoder, fennick::Thumbnails &thumbnails,
               fennick::MainQueue &mainQueue);
  ~LookPictures(); // waits for the pictures that are being decoded
  LookPictures(const LookPictures &) = delete;
  LookPictures &operator=(const LookPictures &) = delete;

  void askForScreen(const std::filesystem::path &file, TakePicture take);
  // Of at most `longEdge` pixels on the longer side: see `fullEdge`.
  void askForFull(const std::filesystem::path &file, std::int64_t longEdge, TakePicture take);
  void askForFacts(const std::filesystem::path &file, TakeFacts take);
  // Nothing that was asked for so far is wanted any more.
  void forget() { wanted_.cancel(); }

  // The longer side in which a picture of that size is decoded in full.
  [[nodiscard]] static std::int64_t fullEdge(std::int64_t width, std::int64_t height);

private:
  template <typename Answer>
  void ask(std::unique_ptr<fennick::SerialQueue> &queue, std::function<std::optional<Answer>()> find,
           std::function<void(const Answer &)> take);
  // Both return nullopt if the decoder is busy.
  [[nodiscard]] std::optional<QImage> screenPicture(const std::filesystem::path &file);
  [[nodiscard]] std::optional<QImage> fullPicture(const std::filesystem::path &file, std::int64_t longEdge);
  [[nodiscard]] LookFacts factsOf(const std::filesystem::path &file);

  fennick::PictureDecoder &decoder_;
  fennick::MainQueue &mainQueue_;
  fennick::Thumbnails &thumbnails_;
  fennick::Lifetime wanted_;
  // Each from its first task on; last: what runs on them uses the above.
  std::unique_ptr<fennick::SerialQueue> screenQueue_;
  std::unique_ptr<fennick::SerialQueue> fullQueue_;
};

} // namespace quarrow
