#include "Quarrow/Terminal/TerminalView.h"

#include <utility>

namespace quarrow {

namespace {

Report::Reason difference(const Report::Listening &before, const Report::Listening &now) {
  if (now.accessKey != before.accessKey)
    return Report::Reason::key;
  if (now.port != before.port)
    return Report::Reason::port;
  return now.phoneURL != before.phoneURL ? Report::Reason::address : Report::Reason::folder;
}

} // namespace

TerminalView::TerminalView(const ServerModel &server, UploadProgress &progress, std::uint16_t preferredPort,
                           Report &report)
    : server_(server), preferredPort_(preferredPort), report_(report) {
  // The key's signal as well as the address's, because the key can change without an address.
  for (const auto signal :
       {&ServerModel::portChanged, &ServerModel::addressesChanged, &ServerModel::preferredInterfaceChanged,
        &ServerModel::accessKeyChanged, &ServerModel::saveFolderChanged})
    connect(&server, signal, this, &TerminalView::update);
  connect(&server, &ServerModel::errorChanged, this, &TerminalView::reportError);
  connect(&server, &ServerModel::localNetworkStatusChanged, this, &TerminalView::reportCheck);
  connect(&server, &ServerModel::firewallChanged, this, &TerminalView::reportFirewall);
  connect(&server, &ServerModel::waitingPhotosChanged, this,
          [this] { report_.waiting(server_.waitingPhotos()); });
  progress.setWatched(report.showsProgress());
  connect(&progress, &UploadProgress::changed, this,
          [this, &progress] { report_.progress(progress.snapshot(), progress.bytesPerSecond()); });
}

void TerminalView::received(const ReceivedFile &file) {
  report_.received(
      {.name = file.url.filename().string(), .path = file.url, .bytes = file.bytes, .note = file.note});
}

void TerminalView::showAgain() {
  if (shown_)
    report_.listening(*shown_, Report::Reason::asked);
}

std::optional<Report::Listening> TerminalView::present() const {
  const auto port = server_.port();
  if (!port || !server_.addressesKnown())
    return std::nullopt;
  return Report::Listening{.port = *port,
                           .preferredPort = preferredPort_,
                           .accessKey = server_.accessKey(),
                           .phoneURL = server_.phoneURL(),
                           .uploadURL = server_.shortcutUploadURL(),
                           .saveFolder = server_.saveFolder().value_or("")};
}

void TerminalView::update() {
  hasListened_ = hasListened_ || server_.port();
  auto now = present();
  if (!now || now == shown_)
    return;
  const auto reason = shown_ ? difference(*shown_, *now) : Report::Reason::started;
  if (shown_ && shown_->phoneURL != now->phoneURL)
    check_.reset(); // it concerned another address
  shown_ = std::move(now);
  report_.listening(*shown_, reason);
  if (reason == Report::Reason::started)
    reportFirewall(); // it may have been found before
}

void TerminalView::reportError() {
  if (const auto &error = server_.error())
    report_.error(*error);
  else
    report_.errorsSolved();
}

// A repeated check with the same result is not reported, and without an address there is nothing to check.
void TerminalView::reportCheck() {
  const auto &status = server_.localNetworkStatus();
  const Report::Check result{.passed = status.kind == LocalNetworkStatus::Kind::ok,
                             .message = status.message.toStdString()};
  if (!shown_ || !shown_->phoneURL || status.kind == LocalNetworkStatus::Kind::unknown || check_ == result)
    return;
  check_ = result;
  report_.check(result);
}

void TerminalView::reportFirewall() {
  const auto &finding = server_.firewall();
  if (shown_ && finding && finding->mayBlock())
    report_.firewall(*finding);
}

} // namespace quarrow
