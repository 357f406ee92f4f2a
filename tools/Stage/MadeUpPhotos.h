#pragma once

#include "tests/Support/FakeDecoder.h"

#include <atomic>

namespace quarrow::test {

// If enabled, reads every file as a picture whose shape depends on its name: "pano" is very wide, "tall" very
// tall, "huge" beyond all limits, and "broken" unreadable. Any thread.
class MadeUpPhotos final : public fennick::test::FakeDecoder {
public:
  void makeUp(bool all) { all_ = all; }
  fennick::PictureResult<fennick::PictureFacts> facts(const std::filesystem::path &file) override;
  fennick::PictureResult<std::string> thumbnail(const std::filesystem::path &file, std::int64_t maxPixel,
                                                double quality) override;

private:
  std::atomic<bool> all_ = false;
};

} // namespace quarrow::test
