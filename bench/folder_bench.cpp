// Measures admitting, naming and placing one photo in folders with 0 to 100,000 files, with a folder limit,
// so that files are counted, and with sequence names, so that the highest number is searched. For comparison,
// one plain listing of the folder.
//
//   folder_bench MEMORY_FOLDER

#include "FennickCore/HTTP/HTTPRequestHead.h"
#include "bench/Measure.h"
#include "bench/Peers.h"

#include <fmt/format.h>

#include <array>
#include <fstream>

namespace {

constexpr int kUploads = 200;

void fill(const std::filesystem::path &folder, int files) {
  for (int i = 1; i <= files; ++i)
    std::ofstream(folder / fmt::format("IMG_{:03}.jpg", i));
}

void receiveOne(fennick::UploadRouter &router) {
  static constexpr std::array<unsigned char, 16> kJpeg{0xFF, 0xD8, 0xFF, 0xE0};
  const auto head = fennick::HTTPRequestHead::parse(
      "POST /upload?k=benchmark HTTP/1.1\r\nContent-Type: image/jpeg\r\nContent-Length: 16\r\n\r\n");
  auto decision = router.route(*head, "127.0.0.1");
  auto &receive = std::get<fennick::HTTPReceive>(decision);
  if (!receive.sink->write(std::as_bytes(std::span(kJpeg))) || receive.sink->finish().status != 200)
    std::abort();
}

} // namespace

int main(int argc, char *argv[]) {
  if (argc < 2) {
    fmt::print(stderr, "usage: folder_bench MEMORY_FOLDER\n");
    return 2;
  }
  fmt::print("Admission, naming and placing of one photo (sync left out)\n");
  double empty = 0;
  for (const int files : {0, 1'000, 10'000, 100'000}) {
    const bench::Scratch scratch(argv[1]);
    fill(scratch.path(), files);
    bench::Service service(
        scratch.path(),
        {.sync = bench::Sync::no, .naming = fennick::PrefixSequenceNaming{}, .folderLimit = 1'000'000});
    const double first = bench::secondsOf([&] { receiveOne(service.router()); });
    std::vector<double> times;
    for (int i = 0; i < kUploads; ++i)
      times.push_back(bench::secondsOf([&] { receiveOne(service.router()); }));
    fennick::SystemFileSystem system;
    const double listing = bench::secondsOf([&] { [[maybe_unused]] auto all = system.list(scratch.path()); });
    const double usual = bench::median(times);
    if (files == 0)
      empty = usual;
    fmt::print("  {:>7} files: {:>6.1f} us   {:>5.2f} x an empty folder   (first {:.1f} ms, one listing "
               "{:.1f} ms)\n",
               files, usual * 1e6, usual / empty, first * 1e3, listing * 1e3);
  }
}
