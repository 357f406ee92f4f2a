// Uploads over loopback into a memory-backed and a disk-backed folder: this service with and without its
// sync, nginx's WebDAV PUT, and a bare socket-to-file loop as the floor (with and without a final sync).
//
//   upload_bench MEMORY_FOLDER DISK_FOLDER [ROUNDS]

#include "bench/Client.h"
#include "bench/Measure.h"
#include "bench/Peers.h"

#include <fmt/format.h>

#include <atomic>
#include <cstdlib>

namespace {

using bench::Sync;

constexpr std::int64_t kMiB = 1 << 20;

struct Load {
  const char *name;
  int files;
  int parallel;
  std::int64_t bytes;
};

constexpr Load kLoads[] = {{"one file of 300 MiB", 1, 1, 300 * kMiB},
                           {"eight files of 300 MiB at once", 8, 8, 300 * kMiB},
                           {"500 photos of 2 MB, one after another", 500, 1, 2'000'000},
                           {"500 photos of 2 MB, eight at a time", 500, 8, 2'000'000}};

bench::Contender contender(const std::string &name, const Load &load, std::uint16_t port, bool put,
                           const bench::Scratch &scratch) {
  return {.name = name,
          .run =
              [=] {
                bench::runMany(load.files, load.parallel, [&](int i) {
                  bench::upload(port, put ? "PUT" : "POST",
                                put ? fmt::format("/{}.jpg", i) : std::string(bench::Service::kTarget),
                                load.bytes);
                });
              },
          .cleanUp =
              [&scratch, put] {
                for (const auto &entry : std::filesystem::directory_iterator(
                         put ? scratch.path() / "nginx" / "files" : scratch.path()))
                  if (entry.is_regular_file())
                    std::filesystem::remove(entry.path());
              }};
}

void report(const Load &load, const std::vector<bench::Contender> &contenders,
            const std::vector<double> &seconds) {
  const double mebibytes = static_cast<double>(load.files * load.bytes) / kMiB;
  fmt::print("\n  {}\n", load.name);
  for (std::size_t i = 0; i < contenders.size(); ++i)
    fmt::print("    {:<28} {:>7.0f} MiB/s   {:>5.2f} x the floor\n", contenders[i].name,
               mebibytes / seconds[i], seconds[0] / seconds[i]);
}

void compareIn(const std::filesystem::path &folder, int rounds) {
  const bench::Scratch plain(folder);
  const bench::Scratch synced(folder);
  const bench::Scratch floorPlain(folder);
  const bench::Scratch floorSynced(folder);
  const bench::Scratch web(folder);
  bench::Service unsyncedService(plain.path(), {.sync = Sync::no, .naming = {}, .folderLimit = {}});
  bench::Service service(synced.path(), {.sync = Sync::yes, .naming = {}, .folderLimit = {}});
  const bench::Floor floor(floorPlain.path(), Sync::no);
  const bench::Floor syncedFloor(floorSynced.path(), Sync::yes);
  const auto nginx = bench::Nginx::start(web.path());
  const auto unsyncedPort = unsyncedService.start();
  const auto port = service.start();

  for (const Load &load : kLoads) {
    std::vector<bench::Contender> contenders{
        contender("floor", load, floor.port(), false, floorPlain),
        contender("Tevrin without sync", load, unsyncedPort, false, plain),
        contender("floor with sync", load, syncedFloor.port(), false, floorSynced),
        contender("Tevrin", load, port, false, synced)};
    if (nginx)
      contenders.push_back(contender("nginx PUT (no sync)", load, nginx->port(), true, web));
    report(load, contenders, bench::compare(contenders, rounds));
  }
}

} // namespace

int main(int argc, char *argv[]) {
  if (argc < 3) {
    fmt::print(stderr, "usage: upload_bench MEMORY_FOLDER DISK_FOLDER [ROUNDS]\n");
    return 2;
  }
  const int rounds = argc > 3 ? std::atoi(argv[3]) : 5;
  fmt::print("Uploads into a memory-backed folder\n");
  compareIn(argv[1], rounds);
  fmt::print("\nUploads into a disk-backed folder\n");
  compareIn(argv[2], rounds);
}
