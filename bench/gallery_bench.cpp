// Measures the gallery: its list, compared with nginx listing the same folder as JSON, and existing
// thumbnails, compared with nginx serving files of the same content.
//
//   gallery_bench MEMORY_FOLDER [ROUNDS]

#include "FennickCore/Imaging/DecoderPool.h"
#include "bench/Client.h"
#include "bench/Measure.h"
#include "bench/Peers.h"
#include "bench/Pictures.h"

#include <fmt/format.h>

#include <cstdlib>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using bench::Contender;

// This service and nginx on one folder.
class Stand {
public:
  explicit Stand(const fs::path &parent)
      : scratch_(parent), nginx_(bench::Nginx::start(scratch_.path())),
        service_(scratch_.path(), {.gallery = folder(), .thumbnails = &thumbnails_}) {
    if (!nginx_)
      bench::fail("nginx does not start");
    port_ = service_.start();
  }
  [[nodiscard]] fs::path folder() const { return scratch_.path() / "nginx" / "files"; }
  [[nodiscard]] std::string own(const std::string &path, const std::string &query = "") const {
    return bench::fetch(port_, path + "?k=benchmark" + query);
  }
  [[nodiscard]] std::string nginx(const std::string &path) const {
    return bench::fetch(nginx_->port(), path);
  }

private:
  bench::Scratch scratch_;
  fennick::DecoderPool decoder_{{.program = fennick::imagingProgram()}};
  fennick::SystemFileSystem files_;
  fennick::Thumbnails thumbnails_{files_, scratch_.path() / "cache", decoder_};
  std::unique_ptr<bench::Nginx> nginx_;
  bench::Service service_;
  std::uint16_t port_ = 0;
};

void lists(const fs::path &parent, int rounds) {
  constexpr int kRequests = 20;
  for (const int files : {100, 1'000, 10'000}) {
    const Stand stand(parent);
    for (int i = 0; i < files; ++i)
      std::ofstream(stand.folder() / fmt::format("IMG_{:05}.jpg", i)) << "a photo";
    const auto often = [](const auto &request) {
      return [=] { bench::runMany(kRequests, 1, [&](int) { std::ignore = request(); }); };
    };
    const auto own = [&] { return stand.own("/gallery"); };
    const auto nginx = [&] { return stand.nginx("/"); };
    const std::vector<Contender> contenders{{.name = "Tevrin", .run = often(own)},
                                            {.name = "nginx (aim: 1.00)", .run = often(nginx)}};
    fmt::print("\n  List of {} photos ({} kB of the first 500, {} kB of all by nginx)\n", files,
               own().size() / 1000, nginx().size() / 1000);
    bench::printTimes(contenders, bench::compare(contenders, rounds), kRequests);
  }
}

void thumbnails(const fs::path &parent, int rounds) {
  constexpr int kPhotos = 40;
  constexpr int kRequests = 400;
  const Stand stand(parent);
  const auto photo = [](int i) { return fmt::format("/thumb/IMG_{}.jpg", i % kPhotos); };
  bench::writePhoto(stand.folder() / "IMG_0.jpg", 2000, 1500);
  for (int i = 1; i < kPhotos; ++i)
    fs::copy_file(stand.folder() / "IMG_0.jpg", stand.folder() / fmt::format("IMG_{}.jpg", i));
  for (const auto &[pixels, query] : {std::pair(400, ""), std::pair(1600, "&s=large")}) {
    const auto still = [pixels](int i) { return fmt::format("/{}-{}.bin", pixels, i % kPhotos); };
    std::size_t bytes = 0;
    for (int i = 0; i < kPhotos; ++i) {
      const std::string thumbnail = stand.own(photo(i), query);
      bytes = thumbnail.size();
      std::ofstream(fmt::format("{}{}", stand.folder().string(), still(i)), std::ios::binary) << thumbnail;
    }
    for (const int parallel : {1, 8}) {
      const std::vector<Contender> contenders{
          {.name = "Tevrin",
           .run =
               [&] {
                 bench::runMany(kRequests, parallel,
                                [&](int i) { std::ignore = stand.own(photo(i), query); });
               }},
          {.name = "nginx, a file (aim: 1.00)", .run = [&] {
             bench::runMany(kRequests, parallel, [&](int i) { std::ignore = stand.nginx(still(i)); });
           }}};
      fmt::print("\n  Known thumbnail of {} pixels ({} kB), {} at a time\n", pixels, bytes / 1000, parallel);
      bench::printTimes(contenders, bench::compare(contenders, rounds), kRequests);
    }
  }
}

} // namespace

int main(int argc, char *argv[]) {
  if (argc < 2) {
    fmt::print(stderr, "usage: gallery_bench MEMORY_FOLDER [ROUNDS]\n");
    return 2;
  }
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 9;
  fmt::print("The gallery, a request each (everything over loopback)\n");
  lists(argv[1], rounds);
  thumbnails(argv[1], rounds);
}
