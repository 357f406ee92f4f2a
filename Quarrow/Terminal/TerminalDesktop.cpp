#include "Quarrow/Terminal/TerminalDesktop.h"

#include "Quarrow/App/Applications.h"

namespace quarrow {

void TerminalDesktop::showPanel() {
  if (panel_)
    panel_();
}

void TerminalDesktop::show(Window window) {
  if (window != Window::settings)
    return showPanel();
  report_.notice("设置用 --set 修改，见 --help / Settings are changed with --set, see --help");
}

void TerminalDesktop::openWith(const std::filesystem::path &application, const Paths &files, Failed failed) {
  if (const auto opened = applications::openWith(application, files); !opened)
    failed(opened.error());
}

void TerminalDesktop::open(const Paths &files, Failed failed) {
  if (const auto opened = applications::openFiles(files); !opened)
    failed(opened.error());
}

void TerminalDesktop::showInFolder(const Paths &files) {
  if (files.empty())
    return;
  if (const auto opened = applications::openFolder(files.front().parent_path()); !opened)
    report_.notice(opened.error());
}

} // namespace quarrow
