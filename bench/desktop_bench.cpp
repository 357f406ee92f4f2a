// Measures the program with windows while it waits in the tray and with its main window open: time from start
// to the tray icon, memory, and wake-ups when idle. This program implements the tray; it needs an X server
// and a session bus of its own, which script/bench provides.
//
//   desktop_bench FOLDER

#include "bench/Measure.h"

#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using Event = std::unique_ptr<xcb_generic_event_t, decltype(&std::free)>;

[[noreturn]] void fail(const char *why) {
  fmt::print(stderr, "desktop_bench: {}\n", why);
  std::exit(EXIT_FAILURE);
}

// A tray that accepts every icon.
class Tray {
public:
  Tray() : connection_(xcb_connect(nullptr, nullptr), &xcb_disconnect) {
    if (xcb_connection_has_error(connection_.get()) != 0)
      fail("there is no X server");
    const auto *screen = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data;
    window_ = xcb_generate_id(connection_.get());
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_create_window(connection_.get(), XCB_COPY_FROM_PARENT, window_, screen->root, 0, 0, 200, 24, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    xcb_map_window(connection_.get(), window_);
    xcb_set_selection_owner(connection_.get(), window_, atom("_NET_SYSTEM_TRAY_S0"), XCB_CURRENT_TIME);
    request_ = atom("_NET_SYSTEM_TRAY_OPCODE");
  }

  // Returns when a new icon has appeared in the tray.
  void awaitIcon() {
    for (icon_ = 0;;) {
      const Event event(xcb_wait_for_event(connection_.get()), &std::free);
      if (!event)
        fail("the X server is gone");
      const void *data = event.get();
      const int kind = event->response_type & 0x7f;
      if (kind == XCB_CLIENT_MESSAGE)
        take(*static_cast<const xcb_client_message_event_t *>(data));
      if (kind == XCB_MAP_NOTIFY && static_cast<const xcb_map_notify_event_t *>(data)->window == icon_)
        return;
    }
  }

private:
  xcb_atom_t atom(std::string_view name) {
    const auto cookie =
        xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection_.get(), cookie, nullptr), &std::free);
    return reply->atom;
  }
  void take(const xcb_client_message_event_t &message) {
    constexpr std::uint32_t kDock = 0;
    if (message.type != request_ || message.data.data32[1] != kDock)
      return;
    icon_ = message.data.data32[2];
    xcb_reparent_window(connection_.get(), icon_, window_, 0, 0);
    xcb_map_window(connection_.get(), icon_);
    xcb_flush(connection_.get());
  }

  std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_;
  xcb_window_t window_ = 0;
  xcb_atom_t request_ = 0;
  xcb_window_t icon_ = 0; // the latest request
};

// The program as a separate process for the lifetime of the object.
class Program {
public:
  Program(const std::filesystem::path &folder, const std::vector<std::string> &more) {
    std::vector<std::string> words{TEVRIN_DESKTOP, "--state-dir", folder / "state"};
    words.insert(words.end(), more.begin(), more.end());
    std::vector<char *> arguments;
    for (auto &word : words)
      arguments.push_back(word.data());
    arguments.push_back(nullptr);
    if (::posix_spawn(&process_, TEVRIN_DESKTOP, nullptr, nullptr, arguments.data(), environ) != 0)
      fail("the program does not start");
  }
  ~Program() {
    ::kill(process_, SIGTERM);
    ::waitpid(process_, nullptr, 0);
  }
  Program(const Program &) = delete;
  Program &operator=(const Program &) = delete;

  // A size in /proc/<pid>/<file>, in MiB.
  [[nodiscard]] double mebibytes(const char *file, const std::string &field) const {
    std::ifstream in(fmt::format("/proc/{}/{}", process_, file));
    for (std::string line; std::getline(in, line);)
      if (line.starts_with(field + ":"))
        return std::stod(line.substr(field.size() + 1)) / 1024;
    fail("the program has ended");
  }
  // Returns how often its threads were switched, voluntarily or not.
  [[nodiscard]] long switches() const {
    long all = 0;
    for (const auto &task : std::filesystem::directory_iterator(fmt::format("/proc/{}/task", process_))) {
      std::ifstream in(task.path() / "status");
      for (std::string line; std::getline(in, line);)
        if (line.find("ctxt_switches:") != std::string::npos)
          all += std::stol(line.substr(line.find(':') + 1));
    }
    return all;
  }

private:
  pid_t process_ = 0;
};

void startUp(Tray &tray, const std::filesystem::path &folder, const char *what,
             const std::vector<std::string> &arguments) {
  std::vector<double> times;
  for (int i = 0; i < 11; ++i) {
    std::unique_ptr<Program> program;
    times.push_back(bench::secondsOf([&] {
      program = std::make_unique<Program>(folder, arguments);
      tray.awaitIcon();
    }));
  }
  fmt::print("  start to tray icon        {:>6.1f} ms   ({}; aim: below 500)\n", bench::median(times) * 1e3,
             what);
}

void idle(Tray &tray, const std::filesystem::path &folder, const char *what,
          const std::vector<std::string> &arguments) {
  constexpr int kSeconds = 30;
  const Program program(folder, arguments);
  tray.awaitIcon();
  std::this_thread::sleep_for(std::chrono::seconds(5)); // until the start and the self-check are over
  const long before = program.switches();
  std::this_thread::sleep_for(std::chrono::seconds(kSeconds));
  fmt::print("  idle memory               {:>6.1f} MiB  ({}; {:.1f} of it not shared; aim: below 150)\n",
             program.mebibytes("status", "VmRSS"), what,
             program.mebibytes("smaps_rollup", "Private_Dirty") +
                 program.mebibytes("smaps_rollup", "Private_Clean"));
  fmt::print("  wake-ups in {} s idle     {:>6}      ({}; aim: none)\n", kSeconds,
             program.switches() - before, what);
}

} // namespace

int main(int argc, char *argv[]) {
  if (argc < 2) {
    fmt::print(stderr, "usage: desktop_bench FOLDER\n");
    return 2;
  }
  const bench::Scratch scratch(argv[1]);
  std::filesystem::create_directories(scratch.path() / "state");
  std::ofstream(scratch.path() / "state/preferences.json")
      << R"({"settings.v1":"{\"preferredPort\":28600}","onboardingDone":true})";
  ::setenv("HOME", scratch.path().c_str(), 1);
  Tray tray;
  fmt::print("The program with windows, software rendering\n");
  startUp(tray, scratch.path(), "waits in the tray", {"--login-item"});
  startUp(tray, scratch.path(), "with its main window", {});
  idle(tray, scratch.path(), "waits in the tray", {"--login-item"});
  idle(tray, scratch.path(), "with its main window", {});
}
