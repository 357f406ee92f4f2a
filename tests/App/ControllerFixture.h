#pragma once

#include "FennickCore/Platform/Network/ListeningSocket.h"
#include "FennickCore/Platform/System/Log.h"
#include "tests/App/Surroundings.h"
#include "tests/Support/LoopbackClient.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <algorithm>

namespace quarrow::test {

constexpr std::string_view kJPEG = "\xFF\xD8\xFF\xE0 a photo"; // 12 bytes

inline fennick::LANAddress wifi(const std::string &address = "192.168.1.20") {
  return {.interface = "wlan0", .address = address, .kind = fennick::LANAddress::Kind::wifi};
}
inline fennick::LANAddress wired(const std::string &address = "10.0.0.5") {
  return {.interface = "eth0", .address = address, .kind = fennick::LANAddress::Kind::wired};
}

// A controller with a real server and a real save folder; the test controls everything else. Nothing runs on
// the main thread until the queue runs.
class ControllerTest : public ::testing::Test, public Surroundings<> {
protected:
  ControllerTest() {
    fennick::logTo([this](std::string_view line) {
      const fennick::Locked locked(logLock);
      logged.emplace_back(line);
    });
    store.update([](auto &settings) { settings.preferredPort = 0; });
    std::ignore = preferences.setFlag("onboardingDone", true);
  }
  ~ControllerTest() override {
    controller.reset();
    fennick::logTo({});
  }

  void make() {
    controller.emplace(options, services());
    QObject::connect(&*controller, &AppController::received,
                     [this](const ReceivedFile &file) { received.push_back(file); });
  }
  void start() {
    make();
    controller->start();
    queue.run();
  }
  void change(const std::function<void(fennick::AppSettings &)> &change) {
    controller->settings().update(change);
    queue.run();
  }

  std::string ask(const std::string &target, std::optional<std::uint16_t> port = {}) {
    fennick::test::LoopbackClient phone("127.0.0.1", port.value_or(controller->server().port().value_or(0)));
    return phone.ask(fmt::format("GET {} HTTP/1.1\r\n\r\n", target));
  }
  std::string upload(std::string_view body = kJPEG) {
    fennick::test::LoopbackClient phone("127.0.0.1", controller->server().port().value_or(0));
    return phone.ask(fmt::format("POST /upload?k={} HTTP/1.1\r\nContent-Length: {}\r\n\r\n{}",
                                 controller->settings().accessKey(), body.size(), body));
  }
  void runUntilReceived(std::size_t count) {
    queue.runUntil([&] { return received.size() >= count; });
  }
  std::vector<std::string> notes() const {
    std::vector<std::string> all;
    for (const auto &file : received)
      all.push_back(file.note);
    return all;
  }
  std::vector<std::string> logLines(std::string_view containing) {
    const fennick::Locked locked(logLock);
    std::vector<std::string> found;
    std::ranges::copy_if(logged, std::back_inserter(found),
                         [&](const auto &line) { return line.contains(containing); });
    return found;
  }
  // Returns ports that were free a moment ago.
  static std::uint16_t freePort() { return twoFreePorts().first; }
  static std::pair<std::uint16_t, std::uint16_t> twoFreePorts() {
    const auto first = fennick::ListeningSocket::open(0);
    const auto second = fennick::ListeningSocket::open(0);
    return {first->port(), second->port()};
  }

  fennick::SettingsStore store{preferences}; // stores settings before the start
  AppController::Options options{.cacheDirectory = disk / "cache", .saveFolder = disk / "photos"};
  std::vector<ReceivedFile> received;
  std::optional<AppController> controller;

  fennick::Mutex logLock;
  std::vector<std::string> logged GUARDED_BY(logLock);
};

} // namespace quarrow::test
