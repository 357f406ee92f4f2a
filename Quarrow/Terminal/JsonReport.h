#pragma once

#include "Quarrow/Terminal/Report.h"

namespace quarrow {

// Writes one JSON object per line to standard output and flushes it. docs/headless.md describes the events
// and their fields.
class JsonReport final : public Report {
public:
  void listening(const Listening &state, Reason reason) override;
  void received(const Received &file) override;
  void error(const std::string &message) override;
  void errorsSolved() override;
  void check(const Check &result) override;
  void firewall(const fennick::FirewallFinding &finding) override;
  void waiting(int photos) override;
  void notice(const std::string &) override {}
  void bell() override {}
  [[nodiscard]] bool showsProgress() const override { return false; }
  void progress(const fennick::UploadActivity::Snapshot &, double) override {}
};

} // namespace quarrow
