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

// Posts notifications on the desktop's notification service (org.freedesktop.Notifications), each one a new
// one whatever was shown before. Nothing waits for the service; where there is none, nothing is shown, and
// the next notification asks for it again. Main thread.
class Notifier final : public QObject {
  Q_OBJECT

public:
  // What people can do with the file of a notification.
  struct Actions {
    std::function<void(const std::filesystem::path &)> open;
    std::function<void(const std::filesystem::path &)> showInFolder;
  };

  // `decoder` outlives the object.
  Notifier(QDBusConnection bus, fennick::PictureDecoder &decoder, Actions actions);
  ~Notifier() override;
  Notifier(const Notifier &) = delete;
  Notifier &operator=(const Notifier &) = delete;

  // Plain UTF-8. With a `file`, the notification shows it small where the service shows pictures, and offers
  // the actions where it offers any; the small picture is made first, a moment later.
  void post(const std::string &title, const std::string &body,
            std::optional<std::filesystem::path> file = std::nullopt);

signals:
  void pictureMade(const QByteArray &jpeg); // for the notification that waits longest; empty: there is none

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
  std::unique_ptr<fennick::SerialQueue> pictures_; // from the first one on; last: it uses the above
};

} // namespace quarrow
