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

} // namespace
} // namespace quarrow::test
