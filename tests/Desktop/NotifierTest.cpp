#include "Quarrow/Desktop/Notifier.h"

#include "tests/Desktop/FakeService.h"
#include "tests/Support/FakeDecoder.h"

#include <QBuffer>
#include <QDBusArgument>
#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace quarrow {
namespace {

using ::testing::ElementsAre;

const QString kName = QStringLiteral("org.freedesktop.Notifications");
const QStringList kEverything{"actions", "body", "body-markup", "icon-static", "persistence"};

std::string jpegOf(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(Qt::red);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  image.save(&buffer, "JPG");
  return bytes.toStdString();
}

// A notification service that records notifications as text.
class FakeNotifications {
public:
  explicit FakeNotifications(QStringList capabilities) : capabilities_(std::move(capabilities)) {}

  void invoke(uint id, const QString &action) { tell(QStringLiteral("ActionInvoked"), {id, action}); }
  void close(uint id) { tell(QStringLiteral("NotificationClosed"), {id, 2U}); }
  std::vector<std::string> take(std::size_t count) {
    test::runUntil([&] { return shown_.size() >= count; });
    return std::exchange(shown_, {});
  }
  int timesAsked = 0;

private:
  void tell(const QString &signal, const QVariantList &arguments) {
    service_.tell(QStringLiteral("/org/freedesktop/Notifications"), kName, signal, arguments);
  }
  QDBusMessage answer(const QDBusMessage &call) {
    if (call.member() == QStringLiteral("GetCapabilities")) {
      ++timesAsked;
      return call.createReply(capabilities_);
    }
    const auto arguments = call.arguments();
    EXPECT_EQ(arguments.at(0), QStringLiteral("Tevrin"));
    EXPECT_EQ(arguments.at(1), 0U); // replaces none
    const auto hints = qdbus_cast<QVariantMap>(arguments.at(6));
    EXPECT_EQ(hints.value(QStringLiteral("desktop-entry")), QStringLiteral("tevrin"));
    shown_.push_back((arguments.at(3).toString() + "|" + arguments.at(4).toString() + "|" +
                      arguments.at(5).toStringList().join(',') + "|" + words(hints.value("image-data")))
                         .toStdString());
    return call.createReply(++lastID_);
  }
  static QString words(const QVariant &picture) {
    if (!picture.isValid())
      return {};
    const auto argument = picture.value<QDBusArgument>();
    int width = 0, height = 0, stride = 0, bits = 0, channels = 0;
    bool transparent = true;
    QByteArray pixels;
    argument.beginStructure();
    argument >> width >> height >> stride >> transparent >> bits >> channels >> pixels;
    argument.endStructure();
    const auto red = static_cast<uchar>(pixels.at((height - 1) * stride));
    const bool isRed = !transparent && bits == 8 && channels == 3 && red > 240;
    return QStringLiteral("%1x%2%3").arg(width).arg(height).arg(isRed ? " red" : "");
  }

  const QStringList capabilities_;
  uint lastID_ = 0;
  std::vector<std::string> shown_;
  test::FakeService service_{kName, [this](const QDBusMessage &call) { return answer(call); }};
};

class NotifierTest : public ::testing::Test {
protected:
  fennick::test::FakeDecoder decoder;
  std::vector<std::string> done;
  Notifier notifier{QDBusConnection::sessionBus(),
                    decoder,
                    {.open = [this](const auto &file) { done.push_back("open " + file.string()); },
                     .showInFolder = [this](const auto &file) { done.push_back("show " + file.string()); }}};
};

TEST_F(NotifierTest, PostsEqualNotificationsSeparately) {
  FakeNotifications service(kEverything);
  notifier.post("收到照片", "<b> & co.jpg · 2 MB");
  notifier.post("收到照片", "<b> & co.jpg · 2 MB");
  EXPECT_THAT(service.take(2), ElementsAre("收到照片|&lt;b&gt; &amp; co.jpg · 2 MB||",
                                           "收到照片|&lt;b&gt; &amp; co.jpg · 2 MB||"));
  notifier.post("again", "");
  service.take(1);
  EXPECT_EQ(service.timesAsked, 1);
}

TEST_F(NotifierTest, ShowsAPictureAndOpensTheFile) {
  FakeNotifications service(kEverything);
  decoder.setThumbnail(jpegOf(101, 50));
  notifier.post("one", "1", "/photos/1.jpg");
  notifier.post("two", "2", "/photos/2.mp4"); // videos have no picture
  EXPECT_THAT(service.take(2),
              ::testing::UnorderedElementsAre("one|1|default,打开,folder,在文件夹中显示|101x50 red",
                                              "two|2|default,打开,folder,在文件夹中显示|"));
  for (const auto &broken : {fennick::PictureResult<std::string>(fennick::test::smallJPEG("no")),
                             fennick::PictureResult<std::string>(jpegOf(193, 10)),
                             fennick::PictureResult<std::string>(
                                 fennick::test::FakeDecoder::kFault(fennick::PictureFault::undecodable))}) {
    decoder.setThumbnail(broken);
    notifier.post("three", "3", "/photos/3.jpg");
    EXPECT_THAT(service.take(1), ElementsAre("three|3|default,打开,folder,在文件夹中显示|"));
  }

  service.invoke(3, QStringLiteral("default"));
  service.invoke(3, QStringLiteral("folder"));
  service.close(3);
  service.invoke(3, QStringLiteral("default"));
  service.invoke(77, QStringLiteral("default"));
  service.invoke(4, QStringLiteral("default"));
  test::runUntil([&] { return done.size() >= 3; });
  EXPECT_THAT(done, ElementsAre("open /photos/3.jpg", "show /photos/3.jpg", "open /photos/3.jpg"));
}

TEST_F(NotifierTest, ShowsNothingWithoutAService) {
  notifier.post("lost", "");
  test::awaitErrors();
  FakeNotifications service(kEverything);
  notifier.post("shown", "");
  EXPECT_THAT(service.take(1), ElementsAre("shown|||"));
}

} // namespace
} // namespace quarrow
