// Measures the processing of received pictures (smaller, within a size, another format), file to file,
// compared with the command lines of vips and ImageMagick.
//
//   pipeline_bench MEMORY_FOLDER [ROUNDS]

#include "FennickCore/Imaging/DecoderPool.h"
#include "FennickCore/Imaging/ImagePipeline.h"
#include "bench/Measure.h"
#include "bench/Pictures.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

namespace fs = std::filesystem;
using bench::Contender;
using bench::Stand;

constexpr fennick::Seconds kTimeout{240};

// A kind of processing, and the equivalent command lines; {0} is the picture, {1} the result without its
// extension.
struct Job {
  const char *name;
  const char *picture;
  fennick::ImagingOptions options;
  std::function<void(const fs::path &picture, const fs::path &result)> vips; // none: it takes minutes
  std::string magick; // for ImageMagick; empty: the same as for vips
  int rounds = 0;     // 0: as many as asked for; 1: just once, without a warm-up
};

auto vipsCommand(const char *command) {
  return [command](const fs::path &picture, const fs::path &result) {
    bench::runCommand(fmt::format(fmt::runtime(command), picture.string(), result.string()));
  };
}

// Searches the largest quality, then size, within a megabyte, with one command for each attempt.
auto vipsWithinMegabyte(int longEdge) {
  return [longEdge](const fs::path &picture, const fs::path &result) {
    constexpr double kMost = 1e6;
    const fs::path file = result.string() + ".jpg";
    double edge = longEdge;
    while (true) {
      double bytes = 0;
      for (const int quality : {85, 77, 69, 61, 53, 50}) {
        bench::runCommand(fmt::format("vips thumbnail {} {}[Q={}] {:.0f} --size down", picture.string(),
                                      file.string(), quality, edge));
        bytes = static_cast<double>(fs::file_size(file));
        if (bytes <= kMost)
          return;
      }
      edge *= std::min(0.9 * std::sqrt(kMost / bytes), 0.95);
    }
  };
}

void process(const Stand &stand, const fs::path &file, const fennick::ImagingOptions &options) {
  fennick::SystemFileSystem files;
  const auto result = fennick::ImagePipeline::process(file, options, kTimeout, {stand.decoder, files});
  if (!result.processed)
    bench::fail(result.note.value_or("not processed"));
}

void pipeline(const Stand &stand, const Job &job) {
  const fs::path picture = stand.file(job.picture);
  const bench::Scratch own(stand.folder);
  const bench::Scratch theirs(stand.folder);
  const auto arrive = [&] {
    own.empty();
    fs::copy_file(picture, own.path() / job.picture);
  };
  std::vector<Contender> contenders{{.name = "Tevrin",
                                     .run = [&] { process(stand, own.path() / job.picture, job.options); },
                                     .cleanUp = arrive}};
  if (job.vips)
    contenders.push_back({.name = "vips", .run = [&] { job.vips(picture, theirs.path() / "vips"); }});
  if (!job.magick.empty())
    contenders.push_back({.name = "ImageMagick", .run = [&] {
                            bench::runCommand(bench::kConvert +
                                              fmt::format(fmt::runtime(job.magick), picture.string(),
                                                          (theirs.path() / "magick").string()));
                          }});
  arrive();
  fmt::print("\n  {} (aim: 1.00 of the best)\n", job.name);
  bench::printTimes(contenders, bench::compare(contenders, job.rounds > 0 ? job.rounds : stand.rounds,
                                               job.rounds == 1 ? bench::WarmUp::no : bench::WarmUp::yes));
}

void pipelines(const Stand &stand) {
  using enum fennick::OutputFormat;
  const auto smaller = vipsCommand("vips thumbnail {0} {1}.jpg[Q=85] 2048 --size down");
  const std::string magickSmaller =
      " -define jpeg:size=2048x2048 {0} -auto-orient -resize 2048x2048 -quality 85 {1}.jpg";
  const std::string magickCapped = " {0} -auto-orient -quality 85 -define jpeg:extent=1000000B {1}.jpg";
  const auto toJpeg = vipsCommand("vips copy {0} {1}.jpg[Q=85]");
  // Quality 0.85 on the encoder's own scale.
  const auto toHeic = vipsCommand("vips copy {0} {1}.heic[Q=78]");
  for (const Job &job : std::initializer_list<Job>{
           {"12.jpg to 2048 pixels", "12.jpg", {.maxPixels = 2048}, smaller, magickSmaller},
           {"48.jpg to 2048 pixels", "48.jpg", {.maxPixels = 2048}, smaller, magickSmaller},
           {"12.jpg to at most 1 MB",
            "12.jpg",
            {.maxBytes = 1'000'000},
            vipsWithinMegabyte(4000),
            magickCapped},
           {"48.jpg to at most 1 MB",
            "48.jpg",
            {.maxBytes = 1'000'000},
            vipsWithinMegabyte(8000),
            magickCapped,
            1},
           {"12.png to JPEG", "12.png", {.format = jpeg}, toJpeg, " {0} -quality 85 {1}.jpg"},
           {"48.png to JPEG", "48.png", {.format = jpeg}, toJpeg, " {0} -quality 85 {1}.jpg"},
           {"12.jpg to HEIC (a few seconds at most)", "12.jpg", {.format = heic}, toHeic, {}, 1},
           {"48.jpg to HEIC", "48.jpg", {.format = heic}, {}, {}, 1}})
    pipeline(stand, job);
}

} // namespace

int main(int argc, char *argv[]) {
  if (argc < 2) {
    fmt::print(stderr, "usage: pipeline_bench MEMORY_FOLDER [ROUNDS]\n");
    return 2;
  }
  const bench::Scratch scratch(argv[1]);
  fennick::DecoderPool decoder({.program = fennick::imagingProgram()});
  const Stand stand{
      .folder = scratch.path(), .decoder = decoder, .rounds = argc > 2 ? std::atoi(argv[2]) : 3};
  bench::writePhoto(stand.file("12.jpg"), 4000, 3000);
  bench::writePhoto(stand.file("48.jpg"), 8000, 6000);
  for (const char *name : {"12", "48"})
    bench::convert(stand.file(fmt::format("{}.jpg", name)), stand.file(fmt::format("{}.png", name)));
  fmt::print("Processing of received pictures, file to file\n");
  std::ignore = decoder.canEncodeHEIC(); // starts the imaging process
  pipelines(stand);
}
