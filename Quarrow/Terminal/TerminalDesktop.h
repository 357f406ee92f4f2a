#pragma once

#include "Quarrow/App/Desktop.h"
#include "Quarrow/Terminal/Report.h"

#include <functional>
#include <utility>

namespace quarrow {

// A desktop for programs in a terminal: the panel and most windows are the code and the address, printed
// again, the sound is the terminal's bell, files are opened where there is a real desktop, and there are no
// icon, no clipboard and no shortcut. Main thread.
class TerminalDesktop final : public Desktop {
public:
  explicit TerminalDesktop(Report &report) : report_(report) {}
  // What shows the code and the address; before this is called nothing does.
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
