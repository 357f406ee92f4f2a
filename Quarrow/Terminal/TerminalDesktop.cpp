#include "Quarrow/Terminal/TerminalDesktop.h"

#include "FennickCore/Platform/Applications.h"

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

void TerminalDesktop::openWith(const std::filesystem::path &application, const std::filesystem::path &file,
                               std::function<void(const std::string &)> failed) {
  if (const auto opened = fennick::openWith(application, file); !opened)
    failed(opened.error());
}

} // namespace quarrow
