#include "Quarrow/Look/LookPictures.h"

#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Storage/PhotoItem.h"

#include <QByteArray>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace quarrow {

namespace fs = std::filesystem;

namespace {

constexpr double kFullQuality = 0.92; // high enough to look at single pixels

QImage decoded(const std::string &jpeg) {
  return QImage::fromData(reinterpret_cast<const uchar *>(jpeg.data()), static_cast<int>(jpeg.size()),
                          "JPEG");
}

} // namespace

LookPictures::LookPictures(fennick::PictureDecoder &decoder, fennick::Thumbnails &thumbnails,
                           fennick::MainQueue &mainQueue)
    : decoder_(decoder), mainQueue_(mainQueue), thumbnails_(thumbnails) {}

LookPictures::~LookPictures() { forget(); }

std::int64_t LookPictures::fullEdge(std::int64_t width, std::int64_t height) {
  const std::int64_t longer = std::max(width, height);
  const double pixels = static_cast<double>(width) * static_cast<double>(height);
  const double share = std::min(1.0, std::sqrt(static_cast<double>(kMostPixels) / std::max(pixels, 1.0)));
  return std::min(kMostSide, static_cast<std::int64_t>(static_cast<double>(longer) * share));
}

// Drops what is no longer wanted, before and after the work. Asks a busy decoder again, which takes a while
// to refuse.
template <typename Answer>
void LookPictures::ask(std::unique_ptr<fennick::SerialQueue> &queue,
                       std::function<std::optional<Answer>()> find,
                       std::function<void(const Answer &)> take) {
  if (!queue)
    queue = std::make_unique<fennick::SerialQueue>(&queue == &fullQueue_ ? "fennick.look.1" : "fennick.look");
  queue->post([this, token = wanted_.token(), find = std::move(find), take = std::move(take)] {
    std::optional<Answer> answer;
    while (!answer && !token.isCancelled())
      answer = find();
    if (answer)
      mainQueue_.post(token.guard([answer = std::move(*answer), take] { take(answer); }));
  });
}

void LookPictures::askForScreen(const fs::path &file, TakePicture take) {
  ask<QImage>(screenQueue_, [this, file] { return screenPicture(file); }, std::move(take));
}

void LookPictures::askForFull(const fs::path &file, std::int64_t longEdge, TakePicture take) {
  ask<QImage>(fullQueue_, [this, file, longEdge] { return fullPicture(file, longEdge); }, std::move(take));
}

void LookPictures::askForFacts(const fs::path &file, TakeFacts take) {
  ask<LookFacts>(screenQueue_, [this, file] { return factsOf(file); }, std::move(take));
}

std::optional<QImage> LookPictures::screenPicture(const fs::path &file) {
  const auto jpeg = thumbnails_.large().thumbnail(file);
  if (!jpeg && jpeg.error() == fennick::ThumbnailService::Missing::busy)
    return std::nullopt;
  return jpeg ? decoded(**jpeg) : QImage();
}

std::optional<QImage> LookPictures::fullPicture(const fs::path &file, std::int64_t longEdge) {
  const auto jpeg = decoder_.thumbnail(file, longEdge, kFullQuality);
  if (!jpeg && jpeg.error().fault == fennick::PictureFault::busy)
    return std::nullopt;
  return jpeg ? decoded(*jpeg) : QImage();
}

LookFacts LookPictures::factsOf(const fs::path &file) {
  LookFacts facts;
  if (const auto status = fennick::fileStatus(file)) {
    facts.bytes = status->bytes;
    facts.date = status->created();
  }
  facts.origin = fennick::readOrigin(file);
  if (facts.origin)
    facts.original = fennick::keptOriginal(file, *facts.origin);
  if (fennick::isVideoName(file.filename().native()))
    return facts;
  if (auto picture = decoder_.facts(file))
    facts.picture = *picture;
  if (auto details = decoder_.details(file))
    facts.details = std::move(*details);
  return facts;
}

} // namespace quarrow
