#pragma once

#include "Quarrow/Terminal/Report.h"

#include <fmt/format.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace quarrow::test {

// Records reports as lines of text.
class RecordingReport final : public Report {
public:
  void listening(const Listening &state, Reason reason) override {
    constexpr std::array kNames{"started", "address", "port", "key", "folder", "asked"};
    add(fmt::format("{}: {} of {} in {}", kNames.at(static_cast<std::size_t>(reason)),
                    state.phoneURL.value_or("nowhere"), state.preferredPort, state.saveFolder.string()));
  }
  void received(const Received &file) override {
    add(fmt::format("received {} ({}, {}): {}", file.name, file.path.string(), file.bytes, file.note));
  }
  void error(const std::string &message) override { add("error " + message); }
  void errorsSolved() override { add("solved"); }
  void check(const Check &result) override {
    add(result.passed ? "check passed" : "check failed: " + result.message);
  }
  void firewall(const fennick::FirewallFinding &finding) override { add("firewall: " + finding.command); }
  void waiting(int photos) override { add(fmt::format("waiting {}", photos)); }
  void notice(const std::string &text) override { add("notice " + text); }
  void bell() override { add("bell"); }
  [[nodiscard]] bool showsProgress() const override { return true; }
  void progress(const fennick::UploadActivity::Snapshot &activity, double) override {
    add(fmt::format("progress {} of {}", activity.receivedBytes, activity.expectedBytes));
  }

  std::vector<std::string> take() { return std::exchange(lines_, {}); }

private:
  void add(std::string line) { lines_.push_back(std::move(line)); }
  std::vector<std::string> lines_;
};

} // namespace quarrow::test
