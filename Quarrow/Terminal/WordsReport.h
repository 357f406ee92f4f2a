#pragma once

#include "Quarrow/Terminal/Report.h"

namespace quarrow {

// Output for users: the QR code and the address, a line for every file, and on a terminal one progress line
// that is updated in place. Errors go to standard error.
class WordsReport final : public Report {
public:
  struct Options {
    bool qr = true;
    bool terminal = false; // whether standard output is a terminal
    bool colour = true;    // escape sequences for the QR code's colours
    bool keys = false;     // single keys are obeyed: the start mentions them
  };
  explicit WordsReport(Options options) : options_(options) {}

  void listening(const Listening &state, Reason reason) override;
  void received(const Received &file) override;
  void error(const std::string &message) override;
  void errorsSolved() override;
  // Reports success only after a failure.
  void check(const Check &result) override;
  void firewall(const fennick::FirewallFinding &finding) override;
  void waiting(int photos) override;
  void notice(const std::string &lines) override { printLine(lines); }
  void bell() override;
  [[nodiscard]] bool showsProgress() const override { return options_.terminal; }
  void progress(const fennick::UploadActivity::Snapshot &activity, double bytesPerSecond) override;

private:
  void printLine(const std::string &line) const;
  void printAddress(const Listening &state) const;
  void printStatus() const;

  const Options options_;
  bool checkFailed_ = false; // the latest check
  std::string progress_;     // what the line of progress says of uploads
  int waiting_ = 0;
};

} // namespace quarrow
