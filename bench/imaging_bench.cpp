// Measures pictures in the sandboxed imaging process, compared with libjpeg-turbo, libvips and ImageMagick
// doing the same: thumbnails, several at once, memory.
//
//   imaging_bench MEMORY_FOLDER [ROUNDS]

#include "FennickCore/Imaging/DecoderPool.h"
#include "bench/Measure.h"
#include "bench/Pictures.h"

#include <fmt/format.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using bench::Contender;
using bench::need;
using bench::Stand;

constexpr int kPercent = 72; // the quality of thumbnails
constexpr fennick::Seconds kTimeout{240};

void makePictures(const Stand &stand) {
  bench::writePhoto(stand.file("12.jpg"), 4000, 3000);
  bench::writePhoto(stand.file("48.jpg"), 8000, 6000);
  bench::writePhoto(stand.file("100.jpg"), 11547, 8660);
  bench::convert(stand.file("100.jpg"), stand.file("100.png"));
  bench::convert(stand.file("12.jpg"), stand.file("12.avif"));
  std::ofstream(stand.file("12.heic"), std::ios::binary)
      << need(stand.decoder.render(stand.file("12.jpg"),
                                   {.output = fennick::PictureType::heic, .longEdge = 4000, .maxBytes = {}},
                                   kTimeout))
             .bytes;
  fmt::print("  Pictures:");
  for (const char *name : {"12.jpg", "48.jpg", "100.jpg", "100.png", "12.heic", "12.avif"})
    fmt::print(" {} {:.1f} MB", name, static_cast<double>(fs::file_size(stand.file(name))) / 1e6);
  fmt::print("\n");
}

// ImageMagick, with a size hint for the JPEG decoder or without.
Contender magick(const char *name, const Stand &stand, const fs::path &file, int pixels, const char *hint) {
  const std::string command =
      fmt::format("{} {} {} -auto-orient -thumbnail {}x{} -quality {} {}", bench::kConvert,
                  fmt::format(fmt::runtime(hint), pixels), file.string(), pixels, pixels, kPercent,
                  stand.file("thumbnail.jpg").string());
  return {.name = name, .run = [command] { bench::runCommand(command); }};
}

void thumbnails(const Stand &stand, const std::string &picture, int pixels) {
  const fs::path file = stand.file(picture);
  const bool jpeg = file.extension() == ".jpg";
  std::vector<Contender> contenders{
      {.name = "Tevrin", .run = [&] { need(stand.decoder.thumbnail(file, pixels, kPercent / 100.0)); }},
      {.name = jpeg ? "libvips in process (aim: 1.00)" : "libvips in process",
       .run = [&] { std::ignore = bench::vipsThumbnail(file, pixels, kPercent); }}};
  if (jpeg) {
    contenders.push_back({.name = "bare libjpeg-turbo (aim: 1.40)",
                          .run = [&] { std::ignore = bench::bareThumbnail(file, pixels, kPercent); }});
    contenders.push_back(magick("ImageMagick (aim: 0.25)", stand, file, pixels, ""));
    contenders.push_back(
        magick("ImageMagick, told the size", stand, file, pixels, "-define jpeg:size={0}x{0}"));
  }
  fmt::print("\n  Thumbnail of {} at {} pixels\n", picture, pixels);
  bench::printTimes(contenders, bench::compare(contenders, stand.rounds));
}

// The bare loop shows how much a second processor can help at the moment.
void severalAtOnce(const Stand &stand) {
  constexpr int kPictures = 8;
  constexpr int kPixels = 1600;
  const fs::path file = stand.file("12.jpg");
  const auto many = [](int parallel, const std::function<void()> &work) {
    return [=] { bench::runMany(kPictures, parallel, [&](int) { work(); }); };
  };
  const auto own = [&] { need(stand.decoder.thumbnail(file, kPixels, kPercent / 100.0)); };
  const auto bare = [&] { std::ignore = bench::bareThumbnail(file, kPixels, kPercent); };
  const std::vector<Contender> contenders{{.name = "Tevrin, four at a time", .run = many(4, own)},
                                          {.name = "one after another (aim: near 0.50)", .run = many(1, own)},
                                          {.name = "bare, four at a time (aim: 1.40)", .run = many(4, bare)},
                                          {.name = "bare, one after another", .run = many(1, bare)}};
  fmt::print("\n  {} thumbnails of 12.jpg at {} pixels, {} processors\n", kPictures, kPixels,
             ::sysconf(_SC_NPROCESSORS_ONLN));
  bench::printTimes(contenders, bench::compare(contenders, stand.rounds));
}

// Returns the peak memory of any process that `work` started, in MiB.
double peakOf(const std::function<void(fennick::DecoderPool &)> &work) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0)
    return 0;
  const pid_t child = ::fork();
  if (child == 0) {
    {
      fennick::DecoderPool decoder({.program = fennick::imagingProgram()});
      work(decoder);
    }
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    ::_exit(::write(ends[1], &usage.ru_maxrss, sizeof usage.ru_maxrss) > 0 ? 0 : 1);
  }
  ::close(ends[1]);
  long kilobytes = 0;
  std::ignore = ::read(ends[0], &kilobytes, sizeof kilobytes);
  ::close(ends[0]);
  ::waitpid(child, nullptr, 0);
  return static_cast<double>(kilobytes) / 1024;
}

void memory(const std::string &name, const std::function<void(fennick::DecoderPool &)> &work) {
  double peak = 0;
  const double seconds = bench::secondsOf([&] { peak = peakOf(work); });
  fmt::print("    {:<34} {:>7.0f} MiB   ({:.1f} s)\n", name, peak, seconds);
}

void memories(const fs::path &folder) {
  using enum fennick::PictureType;
  const auto rendering = [&](const char *picture, fennick::PictureType output, std::int64_t longEdge) {
    memory(fmt::format("{} to {} of {} pixels", picture, fennick::preferredExtension(output), longEdge),
           [&, output, longEdge](fennick::DecoderPool &decoder) {
             need(decoder.render(folder / picture, {.output = output, .longEdge = longEdge, .maxBytes = {}},
                                 kTimeout));
           });
  };
  // The system includes the memory of this program at the fork, so smaller values do not appear.
  fmt::print("\n  Most memory of the imaging process, a picture of 100 million pixels\n");
  memory("thumbnail of 100.jpg at 400 pixels", [&](fennick::DecoderPool &decoder) {
    need(decoder.thumbnail(folder / "100.jpg", 400, kPercent / 100.0));
  });
  rendering("100.jpg", jpeg, 2048);
  rendering("100.jpg", jpeg, 11547);
  rendering("100.png", jpeg, 11547);
  rendering("100.jpg", heic, 11547);
}

} // namespace

int main(int argc, char *argv[]) {
  if (argc < 2) {
    fmt::print(stderr, "usage: imaging_bench MEMORY_FOLDER [ROUNDS]\n");
    return 2;
  }
  const bench::Scratch scratch(argv[1]);
  fmt::print("Pictures\n");
  {
    fennick::DecoderPool decoder({.program = fennick::imagingProgram()});
    const Stand stand{
        .folder = scratch.path(), .decoder = decoder, .rounds = argc > 2 ? std::atoi(argv[2]) : 3};
    makePictures(stand);
    for (const char *picture : {"12.jpg", "48.jpg", "12.heic", "12.avif"})
      for (const int pixels : {400, 1600})
        thumbnails(stand, picture, pixels);
    severalAtOnce(stand);
  }
  memories(scratch.path());
}
