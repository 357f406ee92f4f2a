#pragma once

#include "Quarrow/Terminal/Report.h"

namespace quarrow {

// Words for a person: the QR code and the address, a line for every file, and, when standard output is a
// terminal, one line of progress that is drawn over itself. Errors go to standard error.
class WordsReport final : public Report {
public:
  struct Options {
    bool qr = true;
    bool terminal = false; // standard output is one
    bool colour = true;    // escape sequences for the QR code's colours
  };
  explicit WordsReport(Options options) : options_(options) {}

  void listening(const Listening &state) override;
  void received(const Received &file) override;
  void error(const std::string &message) override;
  [[nodiscard]] bool showsProgress() const override { return options_.terminal; }
  void progress(const fennick::UploadActivity::Snapshot &activity, double bytesPerSecond) override;

private:
  void printLine(const std::string &line) const;

  const Options options_;
};

} // namespace quarrow
