// Measures scans of the photo library in folders of 10,000 and 100,000 files, of which it shows 500: the
// first scan, another one, and one after a new file. For comparison, listing the folder and reading the
// status of each file, the minimum for sorting by date.
//
//   scan_bench DISK_FOLDER [ROUNDS]

#include "FennickCore/Imaging/DecoderPool.h"
#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "bench/Measure.h"
#include "bench/Pictures.h"

#include <fmt/format.h>

#include <array>
#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <memory>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using bench::Contender;
using fennick::Locked;
using fennick::PhotoLibrary;

// A main queue without delayed tasks: only the measured scans run.
class BenchQueue final : public fennick::MainQueue {
public:
  void post(std::function<void()> task) override {
    const Locked locked(lock_);
    tasks_.push_back(std::move(task));
    changed_.notify_one();
  }
  void postAfter(fennick::Seconds, std::function<void()>) override {}

  void runUntil(const std::function<bool()> &done) {
    while (!done())
      next()();
  }

private:
  std::function<void()> next() {
    Locked locked(lock_);
    while (tasks_.empty())
      locked.wait(changed_);
    auto task = std::move(tasks_.front());
    tasks_.pop_front();
    return task;
  }

  fennick::Mutex lock_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_ GUARDED_BY(lock_);
};

// A folder with a library that knows it.
struct Stand {
  fs::path folder;
  std::string photo; // the content of those that are shown
  fennick::DecoderPool &decoder;
  fennick::SystemFileSystem files{};
  BenchQueue queue{};
  std::unique_ptr<PhotoLibrary> library{};
  int added = 0;

  void write(const std::string &name) const { std::ofstream(folder / name, std::ios::binary) << photo; }

  void openAnew() {
    library = std::make_unique<PhotoLibrary>(files, decoder, queue);
    library->setFolder(folder);
    queue.runUntil([&] { return !library->items().empty(); });
  }

  // Removes one photo from the list, to see when a scan has found it again.
  void forgetOne() const { library->remove(std::array{library->items().back().url}); }
  void scanAgain() {
    library->scan();
    queue.runUntil([&] { return library->items().size() == PhotoLibrary::kLimit; });
  }

  void addOne() { write(fmt::format("NEW_{:05}.jpg", ++added)); }
  void scanForNew() {
    library->scan();
    queue.runUntil([&] { return library->items().front().name == fmt::format("NEW_{:05}.jpg", added); });
  }
};

// Only the files that are shown are pictures; older ones are empty.
void fill(const Stand &stand, int files) {
  const int pictures = static_cast<int>(PhotoLibrary::kLimit);
  for (int i = 0; i < files - pictures; ++i)
    std::ofstream(stand.folder / fmt::format("IMG_{:06}.jpg", i)).flush();
  for (int i = files - pictures; i < files; ++i)
    stand.write(fmt::format("IMG_{:06}.jpg", i));
}

void plainListing(const fs::path &folder) {
  const auto all = fennick::readFolder(folder, fennick::Links::follow, [](auto, auto) { return true; });
  if (!all)
    bench::fail("the folder cannot be read");
}

// Returns whether the kernel's caches of files could be dropped.
bool dropCaches() {
  ::sync();
  return static_cast<bool>(std::ofstream("/proc/sys/vm/drop_caches") << "3" << std::flush);
}

void measure(Stand &stand, int files, int rounds) {
  fill(stand, files);
  const auto listing = [&] { plainListing(stand.folder); };
  stand.openAnew();
  stand.forgetOne();
  const std::vector<Contender> again{
      {.name = "again", .run = [&] { stand.scanAgain(); }, .cleanUp = [&] { stand.forgetOne(); }},
      {.name = "listing and status of each", .run = listing}};
  fmt::print("\n  {} files\n", files);
  bench::printTimes(again, bench::compare(again, rounds));
  stand.addOne();
  const std::vector<Contender> oneMore{
      {.name = "again, one new file", .run = [&] { stand.scanForNew(); }, .cleanUp = [&] { stand.addOne(); }},
      {.name = "listing and status of each", .run = listing}};
  bench::printTimes(oneMore, bench::compare(oneMore, rounds));
  const std::vector<Contender> anew{{.name = "nothing known", .run = [&] { stand.openAnew(); }},
                                    {.name = "listing and status of each", .run = listing}};
  bench::printTimes(anew, bench::compare(anew, rounds));
  if (!dropCaches()) {
    fmt::print("    (the kernel's caches cannot be dropped here)\n");
    return;
  }
  const auto forget = [] { dropCaches(); };
  const std::vector<Contender> cold{
      {.name = "nothing known, not even cached", .run = [&] { stand.openAnew(); }, .cleanUp = forget},
      {.name = "listing and status of each", .run = listing, .cleanUp = forget}};
  bench::printTimes(cold, bench::compare(cold, rounds));
}

} // namespace

int main(int argc, char *argv[]) {
  if (argc < 2) {
    fmt::print(stderr, "usage: scan_bench DISK_FOLDER [ROUNDS]\n");
    return 2;
  }
  const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
  fmt::print("The photo library looks through a folder\n");
  for (const int files : {10'000, 100'000}) {
    const bench::Scratch scratch(argv[1]);
    fennick::DecoderPool decoder({.program = fennick::imagingProgram()});
    std::ignore = decoder.canEncodeHEIC(); // starts the imaging process
    bench::writePhoto(scratch.path() / "photo.jpg", 640, 480);
    Stand stand{.folder = scratch.path() / "photos",
                .photo = bench::contentOf(scratch.path() / "photo.jpg"),
                .decoder = decoder};
    fs::create_directories(stand.folder);
    measure(stand, files, rounds);
  }
}
