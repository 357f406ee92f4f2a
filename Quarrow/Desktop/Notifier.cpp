#include "Quarrow/Desktop/Notifier.h"

#include "FennickCore/Storage/PhotoItem.h"
#include "Quarrow/Desktop/DBusCall.h"

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QVariantMap>

#include <cstddef>
#include <utility>

namespace quarrow {

namespace {

// A picture in the format of notifications, (iiibiiay): width, height, bytes a row, transparency, bits a
// channel, channels, pixels.
struct NotificationPicture {
  QImage image; // RGB888
};

QDBusArgument &operator<<(QDBusArgument &argument, const NotificationPicture &picture) {
  const QImage &image = picture.image;
  const QByteArray pixels(reinterpret_cast<const char *>(image.constBits()), image.sizeInBytes());
  argument.beginStructure();
  argument << image.width() << image.height() << static_cast<int>(image.bytesPerLine()) << false << 8 << 3
           << pixels;
  argument.endStructure();
  return argument;
}

// Required by Qt; no service sends pictures.
const QDBusArgument &operator>>(const QDBusArgument &argument, NotificationPicture &) {
  return argument; // NOLINT(bugprone-return-const-ref-from-parameter): it is Qt's form
}

const QString kName = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kOpen = QStringLiteral("default"); // the action of a click on the notification
const QString kShowInFolder = QStringLiteral("folder");

// Longer side in pixels: the largest display size of services, on a screen of double density.
constexpr int kPictureSize = 192;
constexpr double kPictureQuality = 0.85;

// Services do not report when they forget old notifications.
constexpr std::size_t kMostFiles = 100;

QDBusMessage call(const char *method) {
  return QDBusMessage::createMethodCall(kName, kPath, kName, QString::fromLatin1(method));
}

// Escapes `text` for services that interpret markup.
QString escaped(QString text) {
  return text.replace('&', QStringLiteral("&amp;"))
      .replace('<', QStringLiteral("&lt;"))
      .replace('>', QStringLiteral("&gt;"));
}

// The bytes come from the sandboxed decoder.
QImage pictureOf(const QByteArray &jpeg) {
  const QImage image = QImage::fromData(jpeg, "JPG");
  if (image.isNull() || image.width() > kPictureSize || image.height() > kPictureSize)
    return {};
  return image.convertToFormat(QImage::Format_RGB888);
}

} // namespace

Notifier::Notifier(QDBusConnection bus, fennick::PictureDecoder &decoder, Actions actions)
    : bus_(std::move(bus)), decoder_(decoder), actions_(std::move(actions)) {
  qDBusRegisterMetaType<NotificationPicture>();
  connect(this, &Notifier::pictureMade, this, &Notifier::addPicture, Qt::QueuedConnection);
  bus_.connect(kName, kPath, kName, QStringLiteral("ActionInvoked"), this, SLOT(invoked(uint, QString)));
  bus_.connect(kName, kPath, kName, QStringLiteral("NotificationClosed"), this, SLOT(closed(uint)));
}

Notifier::~Notifier() = default;

bool Notifier::can(const char *capability) const {
  return capabilities_ && capabilities_->contains(QString::fromLatin1(capability));
}

void Notifier::post(const std::string &title, const std::string &body,
                    std::optional<std::filesystem::path> file) {
  const Note note{QString::fromStdString(title), QString::fromStdString(body), std::move(file), {}};
  if (capabilities_)
    return deliver(note);
  waiting_.push_back(note);
  if (waiting_.size() == 1)
    callAsync(bus_, call("GetCapabilities"), *this, [this](const QDBusMessage &reply) { learn(reply); });
}

void Notifier::learn(const QDBusMessage &reply) {
  const auto notes = std::exchange(waiting_, {});
  if (reply.type() == QDBusMessage::ErrorMessage)
    return;
  capabilities_ = reply.arguments().value(0).toStringList();
  for (const Note &note : notes)
    deliver(note);
}

void Notifier::deliver(const Note &note) {
  const bool showsPictures = can("icon-static") || can("icon-multi");
  if (showsPictures && note.file && !fennick::isVideoName(note.file->filename().native())) {
    unpictured_.push_back(note);
    makePicture(*note.file);
  } else {
    send(note);
  }
}

void Notifier::makePicture(const std::filesystem::path &file) {
  if (!pictures_)
    pictures_ = std::make_unique<fennick::SerialQueue>("fennick.notify");
  pictures_->post([this, file] {
    const auto jpeg = decoder_.thumbnail(file, kPictureSize, kPictureQuality);
    emit pictureMade(jpeg ? QByteArray::fromStdString(*jpeg) : QByteArray());
  });
}

void Notifier::addPicture(const QByteArray &jpeg) {
  Note note = std::move(unpictured_.front());
  unpictured_.pop_front();
  note.picture = pictureOf(jpeg);
  send(note);
}

void Notifier::send(const Note &note) {
  auto message = call("Notify");
  message.setArguments(argumentsOf(note));
  callAsync(bus_, message, *this, [this, file = note.file](const QDBusMessage &reply) {
    if (reply.type() == QDBusMessage::ErrorMessage)
      capabilities_.reset(); // another service may replace it
    else if (file)
      remember(reply.arguments().value(0).toUInt(), *file);
  });
}

QVariantList Notifier::argumentsOf(const Note &note) const {
  QStringList actions;
  if (note.file && can("actions"))
    actions = {kOpen, tr("打开"), kShowInFolder, tr("在文件夹中显示")};
  QVariantMap hints{{QStringLiteral("desktop-entry"), QStringLiteral("tevrin")},
                    {QStringLiteral("category"), QStringLiteral("transfer.complete")}};
  if (!note.picture.isNull())
    hints.insert(QStringLiteral("image-data"), QVariant::fromValue(NotificationPicture{note.picture}));
  const QString title = can("body") ? note.title : note.title + QStringLiteral(" · ") + note.body;
  const QString body = can("body-markup") ? escaped(note.body) : note.body;
  constexpr uint kReplacesNone = 0;
  constexpr int kAsLongAsTheServiceLikes = -1;
  return {QStringLiteral("Tevrin"), kReplacesNone, QStringLiteral("tevrin"), title, body, actions, hints,
          kAsLongAsTheServiceLikes};
}

void Notifier::remember(uint id, const std::filesystem::path &file) {
  files_.insert_or_assign(id, file);
  if (files_.size() > kMostFiles)
    files_.erase(files_.begin());
}

void Notifier::invoked(uint id, const QString &action) {
  const auto found = files_.find(id);
  if (found == files_.end())
    return;
  const auto file = found->second;
  if (action == kOpen)
    actions_.open(file);
  else if (action == kShowInFolder)
    actions_.showInFolder(file);
}

void Notifier::closed(uint id) { files_.erase(id); }

} // namespace quarrow
