#include "tests/SettingsForm/FormFixture.h"

#include <QAbstractItemModelTester>

namespace quarrow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string utf8(const QString &text) { return text.toStdString(); }

TEST_F(FormTest, TriesActionsWithTheLatestPhoto) {
  receive("a.jpg");
  workflow.tryOut(WorkflowForm::Copy);
  workflow.tryOut(WorkflowForm::Sound);
  workflow.tryOut(WorkflowForm::Note);
  EXPECT_THAT(desktop.take(), ElementsAre("copy a.jpg", "sound", "notify 收到照片: a.jpg · 24 字节"));
  EXPECT_THAT(utf8(workflow.outcomes()[WorkflowForm::Copy]), HasSubstr("a.jpg"));
  EXPECT_EQ(stored(), fennick::AppSettings());
  form.setWatched(true);
  form.setWatched(false);
  EXPECT_EQ(utf8(workflow.outcomes().join("")), "");
}

TEST_F(FormTest, UsesASamplePictureWithoutPhotos) {
  workflow.tryOut(WorkflowForm::Copy);
  runUntil([&] { return !desktop.asked.empty(); });
  EXPECT_THAT(desktop.take(), ElementsAre("copy sample.jpg"));
  EXPECT_THAT(disk.read("sample/sample.jpg"), ::testing::StartsWith("\xFF\xD8\xFF"));
  std::filesystem::remove_all(disk / "sample");
  disk.write("sample", "a file in the folder's place");
  workflow.tryOut(WorkflowForm::Copy);
  runUntil([&] { return workflow.outcomes()[WorkflowForm::Copy].contains("存不下来"); });
  EXPECT_THAT(desktop.take(), IsEmpty());
}

TEST_F(FormTest, RemembersTheApplicationAndReportsAMissingOne) {
  receive("a.jpg");
  workflow.tryOut(WorkflowForm::Open);
  EXPECT_TRUE(workflow.openingFailed());
  const auto entry = disk.write("viewer.desktop");
  workflow.chooseApplication(QString::fromStdString(entry.string()), "看图");
  EXPECT_EQ(utf8(workflow.applicationName()), "看图");
  EXPECT_EQ(workflow.applicationEntry().toStdString(), entry.string());
  workflow.tryOut(WorkflowForm::Open); // this desktop has no programs
  EXPECT_THAT(desktop.take(), ElementsAre("open a.jpg with viewer.desktop"));
  EXPECT_THAT(utf8(workflow.outcomes()[WorkflowForm::Open]), HasSubstr("no such program"));
  EXPECT_TRUE(workflow.openingFailed());

  workflow.chooseApplication(QString::fromStdString((disk / "none.desktop").string()), "没有");
  EXPECT_THAT(utf8(workflow.applicationError()), HasSubstr("没有"));
  EXPECT_EQ(utf8(workflow.applicationName()), "看图");
  workflow.chooseApplication(QString::fromStdString(entry.string()), "看图");
  EXPECT_EQ(utf8(workflow.applicationError()), "");
  std::filesystem::remove(entry);
  EXPECT_THAT(utf8(workflow.applicationError()), HasSubstr("“看图”已经不在"));
  workflow.chooseNoApplication();
  EXPECT_EQ(utf8(workflow.applicationError()), "");
  EXPECT_EQ(stored(), fennick::AppSettings());
}

} // namespace
} // namespace quarrow::test
