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

// What is known about a file besides its picture.
struct LookFacts {
  std::int64_t bytes = 0;
  fennick::Instant date{};                        // FileStatus::created
  std::optional<fennick::PictureFacts> picture{}; // nullopt for videos and unreadable files
  fennick::PictureDetails details{};
  std::optional<fennick::PhotoOrigin> origin{};
  std::optional<std::filesystem::path> original{}; // the path of the unprocessed file
};

// Reads what the quick look shows, off the main thread. Pictures come from the sandboxed decoder as JPEG, and
// only those are decoded here. Results arrive on the main thread, in the order of the requests of each kind;
// requests before the last `forget` get no result. Main thread.
class LookPictures {
public:
  using TakePicture = std::function<void(const QImage &)>; // null: it cannot be shown
  using TakeFacts = std::function<void(const LookFacts &)>;

  // The longer side of a picture for the screen in pixels: the gallery's large size, stored on the disk.
  static constexpr std::int64_t kScreenPixels = fennick::Thumbnails::kLargePixels;
  // Limits for a picture in full: its longer side in pixels, and all pixels, which take 192 MB.
  static constexpr std::int64_t kMostSide = 8'192;
  static constexpr std::int64_t kMostPixels = 48'000'000;

  // All outlive the object.
  LookPictures(fennick::PictureDecoder &decoder, fennick::Thumbnails &thumbnails,
               fennick::MainQueue &mainQueue);
  ~LookPictures(); // waits for the pictures that are being decoded
  LookPictures(const LookPictures &) = delete;
  LookPictures &operator=(const LookPictures &) = delete;

  void askForScreen(const std::filesystem::path &file, TakePicture take);
  // Requests a picture of at most `longEdge` pixels on the longer side: see `fullEdge`.
  void askForFull(const std::filesystem::path &file, std::int64_t longEdge, TakePicture take);
  void askForFacts(const std::filesystem::path &file, TakeFacts take);
  // Drops all requests so far.
  void forget() { wanted_.cancel(); }

  // Returns the longer side at which a picture of that size is decoded in full.
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
  // Each is created with its first task; last: what runs on them uses the above.
  std::unique_ptr<fennick::SerialQueue> screenQueue_;
  std::unique_ptr<fennick::SerialQueue> fullQueue_;
};

} // namespace quarrow
