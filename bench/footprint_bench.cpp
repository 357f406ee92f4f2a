// Measures the terminal receiver: start to listening, memory and wake-ups when idle, the time from an
// upload's last byte to its event, memory during 64 uploads and after 10,000.
//
//   footprint_bench MEMORY_FOLDER DISK_FOLDER

#include "bench/Client.h"
#include "bench/Measure.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <fstream>
#include <optional>
#include <thread>

namespace {

// The receiver as a separate process with its standard output read line by line.
class Receiver {
public:
  explicit Receiver(const std::filesystem::path &scratch) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
      std::abort();
    output_ = ::fdopen(ends[0], "r");
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", 1, 0);
    ::posix_spawn_file_actions_addclose(&actions, ends[0]);
    ::posix_spawn_file_actions_addclose(&actions, ends[1]);
    std::vector<std::string> words{TEVRIN_HEADLESS, "--json",           "--port",      "28500",
                                   "--folder",      scratch / "photos", "--state-dir", scratch / "state"};
    std::vector<char *> arguments;
    for (auto &word : words)
      arguments.push_back(word.data());
    arguments.push_back(nullptr);
    ::posix_spawn(&process_, TEVRIN_HEADLESS, &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    listening_ = awaitEvent("listening");
  }
  ~Receiver() {
    ::kill(process_, SIGTERM);
    ::waitpid(process_, nullptr, 0);
    std::fclose(output_);
  }
  Receiver(const Receiver &) = delete;
  Receiver &operator=(const Receiver &) = delete;

  [[nodiscard]] std::uint16_t port() const { return listening_["port"]; }
  [[nodiscard]] std::string target() const {
    return "/upload?k=" + listening_["accessKey"].get<std::string>();
  }
  // Returns the next event of this kind and skips others.
  nlohmann::json awaitEvent(const std::string &kind) {
    std::array<char, 4096> line{};
    while (std::fgets(line.data(), line.size(), output_) != nullptr)
      if (auto event = nlohmann::json::parse(line.data()); event["event"] == kind)
        return event;
    fmt::print(stderr, "bench: the receiver ended\n");
    std::exit(EXIT_FAILURE);
  }
  // A number of /proc/<pid>/status, in the unit it has there.
  [[nodiscard]] long status(const std::string &field) const {
    std::ifstream file(fmt::format("/proc/{}/status", process_));
    for (std::string line; std::getline(file, line);)
      if (line.starts_with(field + ":"))
        return std::stol(line.substr(field.size() + 1));
    return -1;
  }
  // Returns how often its threads were switched, voluntarily or not.
  [[nodiscard]] long switches() const {
    long all = 0;
    for (const auto &task : std::filesystem::directory_iterator(fmt::format("/proc/{}/task", process_))) {
      std::ifstream file(task.path() / "status");
      for (std::string line; std::getline(file, line);)
        if (line.find("ctxt_switches:") != std::string::npos)
          all += std::stol(line.substr(line.find(':') + 1));
    }
    return all;
  }

private:
  pid_t process_ = 0;
  FILE *output_ = nullptr;
  nlohmann::json listening_;
};

// Uses a hundred addresses, since each is limited to 120 uploads a minute.
fennick::FileDescriptor beginUpload(const Receiver &receiver, int number, std::int64_t bytes) {
  auto socket = bench::connectAs(1 + number % 100, receiver.port());
  bench::sendText(socket,
                  fmt::format("POST {} HTTP/1.1\r\nContent-Length: {}\r\n\r\n", receiver.target(), bytes));
  return socket;
}

void startUp(const std::filesystem::path &scratch) {
  std::vector<double> times;
  for (int i = 0; i < 11; ++i) {
    std::optional<Receiver> receiver;
    times.push_back(bench::secondsOf([&] { receiver.emplace(scratch); }));
  }
  fmt::print("  start to listening        {:>6.1f} ms   (aim: below 100)\n", bench::median(times) * 1e3);
}

void idle(const Receiver &receiver) {
  constexpr int kSeconds = 60;
  std::this_thread::sleep_for(std::chrono::seconds(1)); // until the start is over
  const long before = receiver.switches();
  std::this_thread::sleep_for(std::chrono::seconds(kSeconds));
  fmt::print("  idle memory               {:>6.1f} MiB  (aim: below 20)\n",
             static_cast<double>(receiver.status("VmRSS")) / 1024);
  fmt::print("  wake-ups in {} s idle     {:>6}      (aim: none)\n", kSeconds, receiver.switches() - before);
}

// Measures from a photo's last byte to the response, which waits for the disk, and to the event.
void latency(Receiver &receiver, const char *where) {
  constexpr int kPhotos = 100;
  constexpr std::int64_t kBytes = 2'000'000;
  std::vector<double> toAnswer;
  std::vector<double> toEvent;
  for (int i = 0; i < kPhotos; ++i) {
    const auto socket = beginUpload(receiver, i, kBytes);
    bench::sendBody(socket, kBytes);
    toAnswer.push_back(bench::secondsOf([&] { std::ignore = bench::readStatusLine(socket); }));
    toEvent.push_back(bench::secondsOf([&] { receiver.awaitEvent("received"); }));
  }
  fmt::print("  last byte to the answer   {:>6.2f} ms   (2 MB, {}; with its sync)\n",
             bench::median(toAnswer) * 1e3, where);
  fmt::print("  from there to the event   {:>6.2f} ms   (aim: below 5)\n", bench::median(toEvent) * 1e3);
}

void tenThousand(Receiver &receiver) {
  constexpr int kUploads = 10'000;
  constexpr std::int64_t kBytes = 20'000;
  const auto memory = [&] { return static_cast<double>(receiver.status("VmRSS")) / 1024; };
  fmt::print("  memory after uploads     ");
  for (int i = 1; i <= kUploads; ++i) {
    const auto socket = beginUpload(receiver, i, kBytes);
    bench::sendBody(socket, kBytes);
    if (!bench::readStatusLine(socket).starts_with("HTTP/1.1 200"))
      std::exit(EXIT_FAILURE);
    receiver.awaitEvent("received");
    if (i == 100 || i == 1000 || i == 5000 || i == kUploads)
      fmt::print(" {:.1f} MiB ({})", memory(), i);
  }
  fmt::print("  (aim: flat)\n");
}

void manyUploads(const Receiver &receiver) {
  constexpr int kUploads = 64;
  constexpr std::int64_t kBytes = 8 << 20;
  std::vector<fennick::FileDescriptor> sockets;
  for (int i = 0; i < kUploads; ++i)
    sockets.push_back(beginUpload(receiver, i, kBytes));
  // Sends the first half of all, then the rest of all.
  bench::runMany(kUploads, kUploads,
                 [&](int i) { bench::sendBody(sockets[static_cast<std::size_t>(i)], kBytes / 2); });
  const long threads = receiver.status("Threads");
  bench::runMany(kUploads, kUploads,
                 [&](int i) { bench::sendBody(sockets[static_cast<std::size_t>(i)], kBytes / 2); });
  int saved = 0;
  for (const auto &socket : sockets)
    saved += bench::readStatusLine(socket).starts_with("HTTP/1.1 200") ? 1 : 0;
  fmt::print("  peak with {} uploads      {:>6.1f} MiB  (aim: below 64; {} threads, {} saved)\n", kUploads,
             static_cast<double>(receiver.status("VmHWM")) / 1024, threads, saved);
  fmt::print("  afterwards                {:>6.1f} MiB\n",
             static_cast<double>(receiver.status("VmRSS")) / 1024);
}

} // namespace

int main(int argc, char *argv[]) {
  if (argc < 3) {
    fmt::print(stderr, "usage: footprint_bench MEMORY_FOLDER DISK_FOLDER\n");
    return 2;
  }
  const bench::Scratch memory(argv[1]);
  const bench::Scratch disk(argv[2]);
  fmt::print("The terminal receiver\n");
  startUp(memory.path());
  {
    Receiver receiver(memory.path());
    idle(receiver);
    latency(receiver, "memory");
    tenThousand(receiver);
    latency(receiver, "memory, folder of 10,000");
  }
  {
    Receiver receiver(disk.path());
    latency(receiver, "disk");
  }
  memory.empty();
  manyUploads(Receiver(memory.path()));
}
