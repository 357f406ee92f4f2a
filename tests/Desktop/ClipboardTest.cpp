#include "Quarrow/Desktop/Clipboard.h"

#include "tests/Support/FakeDecoder.h"
#include "tests/Support/ManualQueue.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QUrl>
#include <gtest/gtest.h>

namespace quarrow {
namespace {

class ClipboardTest : public ::testing::Test {
protected:
  ClipboardTest() { decoder.setRendering(fennick::Rendering{.bytes = "a png", .longEdge = 4096}); }
  static const QMimeData &content() { return *QGuiApplication::clipboard()->mimeData(); }
  static QByteArray picture() { return content().data(QStringLiteral("image/png")); }
  static void expectFile(const std::string &url) {
    EXPECT_EQ(content().urls(), QList{QUrl::fromEncoded(url.c_str())});
    EXPECT_EQ(content().data(QStringLiteral("x-special/gnome-copied-files")).toStdString(), "copy\n" + url);
  }

  fennick::test::FakeDecoder decoder;
  fennick::test::ManualQueue queue;
  Clipboard clipboard{decoder, queue};
};

TEST_F(ClipboardTest, CopiesTheFileAtOnceAndAddsThePicture) {
  decoder.hold();
  clipboard.copy({"/photos/照片 1.heic"});
  expectFile("file:///photos/%E7%85%A7%E7%89%87%201.heic");
  EXPECT_TRUE(picture().isEmpty());
  decoder.release();
  queue.runUntil([] { return !picture().isEmpty(); });
  EXPECT_EQ(picture(), "a png");
  expectFile("file:///photos/%E7%85%A7%E7%89%87%201.heic");
  const auto request = decoder.request();
  EXPECT_EQ(std::tuple(request.output, request.longEdge, request.stripAllMetadata),
            std::tuple(fennick::PictureType::png, Clipboard::kMostPixels, true));
}

TEST_F(ClipboardTest, KeepsWhatWasCopiedMeanwhile) {
  decoder.hold();
  clipboard.copy({"/photos/1.jpg"});
  decoder.awaitHeld(1);
  QGuiApplication::clipboard()->setText("mine");
  decoder.release();
  queue.runNext();
  EXPECT_EQ(content().text(), "mine");
  EXPECT_TRUE(picture().isEmpty());
}

TEST_F(ClipboardTest, RendersOnlyTheLastFileAndNoVideo) {
  decoder.hold();
  for (const char *file : {"/photos/1.jpg", "/photos/2.jpg", "/photos/3.jpg"}) {
    clipboard.copy({file});
    decoder.awaitHeld(1);
  }
  decoder.release();
  queue.runUntil([] { return !picture().isEmpty(); });
  expectFile("file:///photos/3.jpg");
  EXPECT_EQ(decoder.calls(), 2);

  decoder.setRendering(fennick::test::FakeDecoder::kFault(fennick::PictureFault::undecodable));
  clipboard.copy({"/photos/4.jpg"});
  clipboard.copy({"/photos/5.MOV"});
  expectFile("file:///photos/5.MOV");
  EXPECT_TRUE(picture().isEmpty());

  const int rendered = decoder.calls();
  clipboard.copy({"/photos/6.jpg", "/photos/7.jpg"});
  EXPECT_EQ(content().urls(), (QList<QUrl>{QUrl("file:///photos/6.jpg"), QUrl("file:///photos/7.jpg")}));
  EXPECT_EQ(content().data(QStringLiteral("x-special/gnome-copied-files")),
            "copy\nfile:///photos/6.jpg\nfile:///photos/7.jpg");
  EXPECT_EQ(decoder.calls(), rendered);
}

} // namespace
} // namespace quarrow
