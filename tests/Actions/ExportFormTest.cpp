#include "tests/Actions/ActionsFixture.h"

#include <QUrl>

namespace quarrow {
namespace {

using fennick::test::FakeDecoder;
using ::testing::ElementsAre;

class ExportFormTest : public test::ActionsTest {
protected:
  ExportFormTest() {
    decoder.setFacts(fennick::PictureFacts{.type = fennick::PictureType::jpeg,
                                           .frames = 1,
                                           .width = 4000,
                                           .height = 3000,
                                           .orientation = {},
                                           .hasLocation = true,
                                           .hasMetadata = true});
    decoder.setRendering(fennick::Rendering{.bytes = "small", .longEdge = 2048, .quality = 0.8});
  }
  std::string example() {
    awaitAnswers();
    return form.exampleCopy().toStdString();
  }
  void apply() {
    form.apply();
    queue.runUntil([this] { return form.stage() == ExportForm::Finished; });
  }

  ExportForm &form = *actions.exporting();
};

TEST_F(ExportFormTest, ShowsTheEffectOnTheFirstPhoto) {
  hang({"b.jpg", "a.jpg"});
  select({"a.jpg", "b.jpg"});
  form.begin();
  EXPECT_EQ(example(), "b.jpeg，长边 2048 像素");
  EXPECT_EQ(form.example(), "b.jpg（长边 4000 像素 · 16 字节）");
  form.setMostKilobytes(500);
  EXPECT_EQ(example(), "b.jpeg，长边 2048 像素，不超过 500 KB");
  form.setLongEdge(0);
  form.setMostKilobytes(0);
  form.setMetadata(ExportForm::KeepMetadata);
  EXPECT_EQ(example(), "b.jpg，原样复制");
  decoder.encodesHEIC = false;
  form.setFormat("png");
  EXPECT_EQ(example(), "b.png，长边 4000 像素");
  EXPECT_FALSE(form.canWriteHEIC());
  form.setFormat("bmp");
  EXPECT_EQ(form.format(), "png");
  decoder.setFacts(FakeDecoder::kFault(fennick::PictureFault::undecodable));
  form.setFormat("jpeg");
  EXPECT_EQ(example(), "无法解码图片");
}

TEST_F(ExportFormTest, WritesCopiesToTheReservedOrAChosenFolder) {
  hang({"b.jpg", "a.mov"});
  select({"a.mov", "b.jpg"});
  form.begin();
  apply();
  EXPECT_THAT(disk.names("photos/export"), ElementsAre("a.mov", "b.jpeg"));
  EXPECT_EQ(form.result(), "已导出 2 项");
  EXPECT_THAT(form.remark().toStdString(), ::testing::HasSubstr("1 项是视频")) << "its location stays";
  form.showCopies();
  EXPECT_THAT(desktop.take(), ElementsAre("show b.jpeg a.mov"));
  form.begin();
  form.chooseFolder(QUrl::fromLocalFile(QString::fromStdString((disk / "elsewhere").string())));
  EXPECT_FALSE(form.usesReservedFolder());
  form.setMetadata(ExportForm::KeepMetadata);
  apply();
  EXPECT_THAT(disk.names("elsewhere"), ElementsAre("a.mov", "b.jpeg"));
  EXPECT_EQ(form.remark(), "");
  EXPECT_THAT(listed(), ElementsAre("b.jpg", "a.mov"));
  EXPECT_EQ(disk.read("photos/b.jpg"), "content of b.jpg");
}

TEST_F(ExportFormTest, CollectsFailuresAndReportsAStop) {
  hang({"a.jpg", "b.mov", "c.jpg"});
  select({"a.jpg", "b.mov", "c.jpg"});
  form.begin();
  decoder.setRendering(FakeDecoder::kFault(fennick::PictureFault::undecodable));
  apply();
  EXPECT_EQ(form.result(), "导出了 1 项，2 项没能导出");
  EXPECT_EQ(form.failures(), (QStringList{"a.jpg：无法解码图片", "c.jpg：无法解码图片"}));

  decoder.setRendering(fennick::Rendering{.bytes = "small", .longEdge = 2048, .withinMaxBytes = false});
  form.begin();
  awaitAnswers();
  decoder.hold();
  form.apply();
  decoder.awaitHeld(1);
  actions.jobs()->stop();
  decoder.release();
  queue.runUntil([this] { return form.stage() == ExportForm::Finished; });
  EXPECT_EQ(form.result(), "已停止，导出了 1 项");
  EXPECT_THAT(form.remark().toStdString(), ::testing::HasSubstr("1 项已到最小尺寸"));
}

} // namespace
} // namespace quarrow
