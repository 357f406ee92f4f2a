#pragma once

#include "Quarrow/App/Desktop.h"
#include "Quarrow/Terminal/Report.h"

#include <functional>
#include <utility>

namespace quarrow {

// The desktop of a program in a terminal: panel and most windows print the code and the address again, the
// sound is the terminal's bell, files are opened if there is a desktop session, and there is no icon,
// clipboard or shortcut. Main thread.
class TerminalDesktop final : public Desktop {
public:
  explicit TerminalDesktop(Report &report) : report_(report) {}
  // Sets the function that prints the code and the address; nothing is printed before.
  void setPanel(std::function<void()> show) { panel_ = std::move(show); }

  void makeTrayItem() override {}
  void flashTrayItem() override {}
  void showPanel() override;
  void closePanel() override {}
  void show(Window window) override;
  [[nodiscard]] bool isOpen(Window) const override { return false; }
  void copyToClipboard(const Paths &) override {}
  void openWith(const std::filesystem::path &application, const Paths &files, Failed failed) override;
  void open(const Paths &files, Failed failed) override;
  void showInFolder(const Paths &files) override;
  void playSound() override { report_.bell(); }
  void notify(const std::string &, const std::string &, const std::filesystem::path &) override {}
  [[nodiscard]] bool registerHotKey(std::optional<std::int64_t>, HotKeyActions) override { return true; }
  [[nodiscard]] bool launchedAsLoginItem() const override { return false; }

private:
  Report &report_;
  std::function<void()> panel_;
};

} // namespace quarrow
