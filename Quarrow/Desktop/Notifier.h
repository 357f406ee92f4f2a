#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QImage>
#include <QObject>
#include <QString>
#include <QStringList>

#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quarrow {

// Posts notifications to the desktop's notification service (org.freedesktop.Notifications), each as a new
// one. Never waits for the service; without one nothing is shown, and the next notification looks for it
// again. Main thread.
class Notifier final : public QObject {
  Q_OBJECT

public:
  // Actions for the file of a notification.
  struct Actions {
    std::function<void(const std::filesystem::path &)> open;
    std::function<void(const std::filesystem::path &)> showInFolder;
  };

  // `decoder` outlives the object.
  Notifier(QDBusConnection bus, fennick::PictureDecoder &decoder, Actions actions);
  ~Notifier() override;
  Notifier(const Notifier &) = delete;
  Notifier &operator=(const Notifier &) = delete;

  // Plain UTF-8. With a `file`, the notification shows a small picture and actions if the service supports
  // them; the picture is made first, which takes a moment.
  void post(const std::string &title, const std::string &body,
            std::optional<std::filesystem::path> file = std::nullopt);

signals:
  void pictureMade(const QByteArray &jpeg); // for the oldest waiting notification; empty: none

private:
  struct Note {
    QString title;
    QString body;
    std::optional<std::filesystem::path> file;
    QImage picture;
  };

  [[nodiscard]] bool can(const char *capability) const;
  void learn(const QDBusMessage &reply);
  void deliver(const Note &note);
  void makePicture(const std::filesystem::path &file);
  void addPicture(const QByteArray &jpeg);
  void send(const Note &note);
  [[nodiscard]] QVariantList argumentsOf(const Note &note) const;
  Q_SLOT void invoked(uint id, const QString &action);
  Q_SLOT void closed(uint id);
  void remember(uint id, const std::filesystem::path &file);

  QDBusConnection bus_;
  fennick::PictureDecoder &decoder_;
  const Actions actions_;
  std::optional<QStringList> capabilities_;        // absent until the service has told them
  std::vector<Note> waiting_;                      // for that
  std::deque<Note> unpictured_;                    // their pictures are being made, in this order
  std::map<uint, std::filesystem::path> files_;    // of notifications that may still be shown, by their ids
  std::unique_ptr<fennick::SerialQueue> pictures_; // created with the first one; last: it uses the above
};

} // namespace quarrow
