#include "Quarrow/App/ServerModel.h"

#include "Quarrow/App/AddressEntry.h"
#include "Quarrow/App/PhoneAddress.h"

#include <fmt/format.h>

#include <utility>

namespace quarrow {

namespace {

// Large enough for a phone at arm's length from any screen; the quiet zone is the smallest that phones
// accept.
constexpr std::int64_t kModulePixels = 8;
constexpr std::int64_t kQuietModules = 2;

template <typename T>
bool assign(T &field, T value) {
  if (field == value)
    return false;
  field = std::move(value);
  return true;
}

QString textOf(const std::string &text) { return QString::fromStdString(text); }
QString textOf(const std::optional<std::string> &text) { return text ? textOf(*text) : QString(); }

} // namespace

std::optional<std::string> firewallAdvice(const fennick::FirewallFinding &finding) {
  using Port = fennick::FirewallFinding::Port;
  if (!finding.mayBlock())
    return std::nullopt;
  const QString advice =
      finding.port == Port::closed
          ? ServerModel::tr("这台电脑的防火墙（%1）挡住了手机。在终端运行下面的命令即可放行。")
          : ServerModel::tr("这台电脑开着防火墙（%1）。如果手机连不上，在终端运行下面的命令放行。");
  return advice.arg(QString::fromStdString(std::string(rawValue(finding.kind)))).toStdString();
}

std::optional<fennick::LANAddress> ServerModel::preferredAddress() const {
  return quarrow::preferredAddress(addresses_, preferredInterface_);
}

std::optional<std::string> ServerModel::baseURL() const {
  return quarrow::baseURL(preferredAddress(), port_);
}

std::optional<std::string> ServerModel::phoneURL() const {
  const auto base = baseURL();
  return base ? std::optional(quarrow::phoneURL(*base, accessKey_)) : std::nullopt;
}

std::optional<std::string> ServerModel::shortcutUploadURL() const {
  const auto base = baseURL();
  return base ? std::optional(quarrow::shortcutUploadURL(*base, accessKey_)) : std::nullopt;
}

void ServerModel::setPort(std::optional<std::uint16_t> port) {
  if (!assign(port_, port))
    return;
  emit portChanged();
  announcePhoneURL();
}

void ServerModel::setAddresses(std::vector<fennick::LANAddress> addresses) {
  const bool first = assign(addressesKnown_, true);
  if (!assign(addresses_, std::move(addresses)) && !first)
    return;
  emit addressesChanged();
  announcePhoneURL();
}

void ServerModel::setPreferredInterface(std::optional<std::string> interface) {
  if (!assign(preferredInterface_, std::move(interface)))
    return;
  emit preferredInterfaceChanged();
  announcePhoneURL();
}

void ServerModel::setAccessKey(std::string accessKey) {
  if (!assign(accessKey_, std::move(accessKey)))
    return;
  emit accessKeyChanged();
  announcePhoneURL();
}

void ServerModel::setError(std::optional<std::string> error) {
  if (assign(error_, std::move(error)))
    emit errorChanged();
}

void ServerModel::setSaveFolder(std::optional<std::filesystem::path> saveFolder) {
  if (assign(saveFolder_, std::move(saveFolder)))
    emit saveFolderChanged();
}

void ServerModel::setLastNote(std::optional<std::string> note) {
  if (assign(lastNote_, std::move(note)))
    emit lastNoteChanged();
}

void ServerModel::setWaitingPhotos(int photos) {
  if (assign(waitingPhotos_, photos))
    emit waitingPhotosChanged();
}

void ServerModel::setLocalNetworkStatus(LocalNetworkStatus status) {
  if (assign(localNetworkStatus_, std::move(status)))
    emit localNetworkStatusChanged();
}

void ServerModel::setShared(std::string folderName, std::int64_t count) {
  if (assign(sharedFolderName_, std::move(folderName)))
    emit sharedFolderNameChanged();
  if (assign(sharedCount_, count))
    emit sharedCountChanged();
}

void ServerModel::setFirewall(std::optional<fennick::FirewallFinding> finding) {
  if (assign(firewall_, std::move(finding)))
    emit firewallChanged();
}

std::optional<fennick::Bitmap> ServerModel::qrImage() const {
  return qrText_ ? fennick::QRCodeRenderer::image(*qrText_, kModulePixels, kQuietModules) : std::nullopt;
}

void ServerModel::refreshQR() {
  if (assign(qrText_, phoneURL()))
    emit qrImageChanged();
}

void ServerModel::announcePhoneURL() {
  if (assign(announcedURL_, phoneURL()))
    emit phoneURLChanged();
}

QVariantList ServerModel::addressEntries() const {
  QVariantList entries;
  for (const auto &address : addresses_)
    entries.append(QVariant::fromValue(
        AddressEntry{.interface = textOf(address.interface),
                     .address = textOf(address.address),
                     .kind = QString::fromUtf8(std::string(rawValue(address.kind)).c_str())}));
  return entries;
}

QString ServerModel::preferredInterfaceText() const { return textOf(preferredInterface_); }
QString ServerModel::accessKeyText() const { return textOf(accessKey_); }
QString ServerModel::errorText() const { return textOf(error_); }
QString ServerModel::lastNoteText() const { return textOf(lastNote_); }
QString ServerModel::sharedFolderNameText() const { return textOf(sharedFolderName_); }
QString ServerModel::phoneURLText() const { return textOf(phoneURL()); }
QString ServerModel::shortcutUploadURLText() const { return textOf(shortcutUploadURL()); }

QString ServerModel::waitingNote() const {
  return waitingPhotos_ > 0 ? tr("还有 %n 张照片等待处理", nullptr, waitingPhotos_) : QString();
}

QString ServerModel::saveFolderText() const {
  return saveFolder_ ? textOf(saveFolder_->string()) : QString();
}

QString ServerModel::checkAdvice() const {
  if (localNetworkStatus_.kind != LocalNetworkStatus::Kind::failed)
    return {};
  return addresses_.empty() ? tr("请把电脑连上 Wi-Fi 或网线，然后再检查一次。")
                            : tr("换一个网络地址再试；如果开着 VPN，请先关掉。");
}

QString ServerModel::resetKeyWarning() {
  return tr("重置后，之前扫过的二维码和快捷指令里填写的地址都会失效，手机需要重新扫码。");
}

QString ServerModel::firewallAdviceText() const {
  return firewall_ ? textOf(firewallAdvice(*firewall_)) : QString();
}

QString ServerModel::firewallCommandText() const {
  return firewall_ ? textOf(firewall_->command) : QString();
}

} // namespace quarrow
