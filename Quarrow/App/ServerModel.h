#pragma once

#include "FennickCore/Network/FirewallFinding.h"
#include "FennickCore/Network/LANAddress.h"
#include "FennickCore/Network/QRCodeRenderer.h"
#include "Quarrow/App/LocalNetworkStatus.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quarrow {

// The observable state of the receiving service for the panel, the windows and the terminal. Only the
// coordinator writes it; every field announces its changes, and only changes. Main thread.
//
// The properties are for QML: absent texts are empty, an absent port is 0. C++ reads the typed fields.
class ServerModel : public QObject {
  Q_OBJECT
  Q_PROPERTY(int port READ portNumber NOTIFY portChanged)
  // Each with `interface`, `address` and `kind` ("wifi", "wired", "hotspot", "other").
  Q_PROPERTY(QVariantList addresses READ addressEntries NOTIFY addressesChanged)
  Q_PROPERTY(QString preferredInterface READ preferredInterfaceText NOTIFY preferredInterfaceChanged)
  Q_PROPERTY(QString accessKey READ accessKeyText NOTIFY accessKeyChanged)
  Q_PROPERTY(QString error READ errorText NOTIFY errorChanged)
  Q_PROPERTY(QString saveFolder READ saveFolderText NOTIFY saveFolderChanged)
  Q_PROPERTY(QString lastNote READ lastNoteText NOTIFY lastNoteChanged)
  // Received photos whose processing is not over, and a sentence about them, which is empty if there are
  // none.
  Q_PROPERTY(int waitingPhotos READ waitingPhotos NOTIFY waitingPhotosChanged)
  Q_PROPERTY(QString waitingNote READ waitingNote NOTIFY waitingPhotosChanged)
  Q_PROPERTY(
      quarrow::LocalNetworkStatus localNetworkStatus READ localNetworkStatus NOTIFY localNetworkStatusChanged)
  // A suggestion after a failed self-check.
  Q_PROPERTY(QString checkAdvice READ checkAdvice NOTIFY localNetworkStatusChanged)
  Q_PROPERTY(QString sharedFolderName READ sharedFolderNameText NOTIFY sharedFolderNameChanged)
  Q_PROPERTY(int sharedCount READ sharedCountNumber NOTIFY sharedCountChanged)
  Q_PROPERTY(QString phoneURL READ phoneURLText NOTIFY phoneURLChanged)
  Q_PROPERTY(QString shortcutUploadURL READ shortcutUploadURLText NOTIFY phoneURLChanged)
  // A sentence about what blocks phones on this computer, and the command that lets them in.
  Q_PROPERTY(QString firewallAdvice READ firewallAdviceText NOTIFY firewallChanged)
  Q_PROPERTY(QString firewallCommand READ firewallCommandText NOTIFY firewallChanged)

public:
  // The bound port; nullopt while no server listens.
  [[nodiscard]] std::optional<std::uint16_t> port() const { return port_; }
  // Usable addresses, best first; empty before the first report of the network.
  [[nodiscard]] const std::vector<fennick::LANAddress> &addresses() const { return addresses_; }
  // Whether the addresses were ever set. The first time is announced even if there are none.
  [[nodiscard]] bool addressesKnown() const { return addressesKnown_; }
  [[nodiscard]] const std::optional<std::string> &preferredInterface() const { return preferredInterface_; }
  [[nodiscard]] const std::string &accessKey() const { return accessKey_; }
  // The latest error: of the server's start, the save folder, the settings or the shortcut.
  [[nodiscard]] const std::optional<std::string> &error() const { return error_; }
  // The QR code of the phone URL as of the last `refreshQR`; made at each call.
  [[nodiscard]] std::optional<fennick::Bitmap> qrImage() const;
  [[nodiscard]] const std::optional<std::filesystem::path> &saveFolder() const { return saveFolder_; }
  // One line about the last received file.
  [[nodiscard]] const std::optional<std::string> &lastNote() const { return lastNote_; }
  [[nodiscard]] int waitingPhotos() const { return waitingPhotos_; }
  [[nodiscard]] QString waitingNote() const;
  [[nodiscard]] const LocalNetworkStatus &localNetworkStatus() const { return localNetworkStatus_; }
  // The name of the folder that the gallery shows or would show, and the number of pictures directly in it.
  [[nodiscard]] const std::string &sharedFolderName() const { return sharedFolderName_; }
  [[nodiscard]] std::int64_t sharedCount() const { return sharedCount_; }
  [[nodiscard]] QString checkAdvice() const;
  // What the user should read before the key is reset (SettingsStore::resetAccessKey).
  [[nodiscard]] static QString resetKeyWarning();
  // nullopt before the first search.
  [[nodiscard]] const std::optional<fennick::FirewallFinding> &firewall() const { return firewall_; }

  // The address in the QR code: the preferred interface's, otherwise the first; nullopt without addresses.
  [[nodiscard]] std::optional<fennick::LANAddress> preferredAddress() const;
  // "http://192.168.1.20:8000"; nullopt without an address or a port.
  [[nodiscard]] std::optional<std::string> baseURL() const;
  // The URL in the QR code, and the one for shortcuts; nullopt without the base URL.
  [[nodiscard]] std::optional<std::string> phoneURL() const;
  [[nodiscard]] std::optional<std::string> shortcutUploadURL() const;

  // For the coordinator.
  void setPort(std::optional<std::uint16_t> port);
  void setAddresses(std::vector<fennick::LANAddress> addresses);
  void setPreferredInterface(std::optional<std::string> interface);
  void setAccessKey(std::string accessKey);
  void setError(std::optional<std::string> error);
  void setSaveFolder(std::optional<std::filesystem::path> saveFolder);
  void setLastNote(std::optional<std::string> note);
  void setWaitingPhotos(int photos);
  void setLocalNetworkStatus(LocalNetworkStatus status);
  void setShared(std::string folderName, std::int64_t count);
  void setFirewall(std::optional<fennick::FirewallFinding> finding);
  // Updates the QR code from the current phone URL, or removes it if there is none.
  void refreshQR();

signals:
  void portChanged();
  void addressesChanged();
  void preferredInterfaceChanged();
  void accessKeyChanged();
  void errorChanged();
  void qrImageChanged();
  void saveFolderChanged();
  void lastNoteChanged();
  void waitingPhotosChanged();
  void localNetworkStatusChanged();
  void sharedFolderNameChanged();
  void sharedCountChanged();
  void phoneURLChanged();
  void firewallChanged();

private:
  [[nodiscard]] int portNumber() const { return port_.value_or(0); }
  [[nodiscard]] QVariantList addressEntries() const;
  [[nodiscard]] QString preferredInterfaceText() const;
  [[nodiscard]] QString accessKeyText() const;
  [[nodiscard]] QString errorText() const;
  [[nodiscard]] QString saveFolderText() const;
  [[nodiscard]] QString lastNoteText() const;
  [[nodiscard]] QString sharedFolderNameText() const;
  [[nodiscard]] int sharedCountNumber() const { return static_cast<int>(sharedCount_); }
  [[nodiscard]] QString phoneURLText() const;
  [[nodiscard]] QString shortcutUploadURLText() const;
  [[nodiscard]] QString firewallAdviceText() const;
  [[nodiscard]] QString firewallCommandText() const;
  void announcePhoneURL();

  std::optional<std::uint16_t> port_;
  std::vector<fennick::LANAddress> addresses_;
  bool addressesKnown_ = false;
  std::optional<std::string> preferredInterface_;
  std::string accessKey_;
  std::optional<std::string> error_;
  std::optional<std::string> qrText_; // what the QR code says
  std::optional<std::filesystem::path> saveFolder_;
  std::optional<std::string> lastNote_;
  int waitingPhotos_ = 0;
  LocalNetworkStatus localNetworkStatus_;
  std::string sharedFolderName_;
  std::int64_t sharedCount_ = 0;
  std::optional<fennick::FirewallFinding> firewall_;
  std::optional<std::string> announcedURL_;
};

// Returns a Chinese sentence about what to do if phones cannot connect although the service answers, or
// nullopt if no firewall is known to block them.
[[nodiscard]] std::optional<std::string> firewallAdvice(const fennick::FirewallFinding &finding);

} // namespace quarrow
