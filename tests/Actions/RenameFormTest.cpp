#include "tests/Actions/ActionsFixture.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <cerrno>

namespace quarrow {
namespace {

using ::testing::ElementsAre;
using Operation = fennick::test::FaultyFileSystem::Operation;

class RenameFormTest : public test::ActionsTest {
protected:
  Names preview() {
    awaitAnswers();
    Names names;
    for (int row = 0; row < form.preview()->rowCount(); ++row)
      names.push_back(form.preview()->index(row).data(RenamePreview::NewName).toString().toStdString());
    return names;
  }
  bool apply() {
    QSignalSpy finished(&form, &RenameForm::finished);
    form.apply();
    queue.runUntil([&] { return finished.count() == 1; });
    return finished[0][0].toBool();
  }

  RenameForm &form = *actions.renaming();
  QAbstractItemModelTester tester{form.preview(), QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(RenameFormTest, PreviewsRenamesAndUndoes) {
  hang({"b.jpg", "a.png", "other.jpg", "x-2.png"});
  select({"a.png", "b.jpg"});
  form.begin();
  EXPECT_THAT(preview(), ElementsAre("001.jpg", "002.png"));
  form.setPrefix("x-");
  form.setDigits(1);
  EXPECT_FALSE(form.ready());
  EXPECT_THAT(preview(), ElementsAre("x-1.jpg", "x-3.png"));
  form.setStart(9); // applied before the preview is ready:
  QSignalSpy finished(&form, &RenameForm::finished);
  form.apply();
  EXPECT_THAT(preview(), ElementsAre("x-9.jpg", "x-10.png"));
  queue.runUntil([&] { return finished.count() == 1; });
  awaitWall({"x-9.jpg", "x-10.png", "other.jpg", "x-2.png"});
  EXPECT_THAT(selected(), ElementsAre("x-10.png", "x-9.jpg"));
  EXPECT_EQ(disk.read("photos/x-9.jpg"), "content of b.jpg");
  EXPECT_EQ(actions.note(), "已重命名 2 项");
  actions.undo();
  awaitJobs();
  awaitWall({"b.jpg", "a.png", "other.jpg", "x-2.png"});
}

TEST_F(RenameFormTest, ReportsConflictsAndRenamesNothing) {
  hang({"a.jpg", "b.jpg"});
  select({"a.jpg", "b.jpg"});
  form.begin();
  std::ignore = preview();
  form.setPrefix(".x");
  std::ignore = preview();
  EXPECT_EQ(form.problem(), "名称不能以点开头，也不能含有 / 和 :");
  EXPECT_FALSE(form.ready());
  form.setPrefix(QString(90, u'长'));
  std::ignore = preview();
  EXPECT_EQ(form.problem(), "文件名太长");
  form.setPrefix("x");
  EXPECT_THAT(preview(), ElementsAre("x001.jpg", "x002.jpg"));
  EXPECT_EQ(form.problem(), "");
  files.failNext(Operation::moveNoReplace, EACCES);
  EXPECT_FALSE(apply());
  EXPECT_EQ(form.problem(), "没有权限");
  EXPECT_THAT(listed(), ElementsAre("a.jpg", "b.jpg"));
  EXPECT_FALSE(actions.canUndo());
}

} // namespace
} // namespace quarrow
