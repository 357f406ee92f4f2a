#include "tests/Actions/ActionsFixture.h"

#include <QSignalSpy>

#include <cerrno>
#include <semaphore>

namespace quarrow {
namespace {

using fennick::test::FakeDecoder;
using ::testing::ElementsAre;
using Operation = fennick::test::FaultyFileSystem::Operation;

class PhotoActionsTest : public test::ActionsTest {};

TEST_F(PhotoActionsTest, RenamesUndoesAndReportsConflicts) {
  hang({"a.jpg", "b.jpg"});
  select({"a.jpg"});
  EXPECT_EQ(actions.rename("b"), "已存在同名文件：b.jpg");
  EXPECT_EQ(actions.rename("x/y"), "文件名不合法");
  EXPECT_EQ(actions.rename("a"), "");
  EXPECT_FALSE(actions.canUndo());
  EXPECT_EQ(actions.rename(" c "), "");
  EXPECT_THAT(listed(), ElementsAre("c.jpg", "b.jpg"));
  EXPECT_THAT(selected(), ElementsAre("c.jpg"));
  actions.undo();
  awaitJobs();
  EXPECT_THAT(listed(), ElementsAre("a.jpg", "b.jpg"));
  EXPECT_THAT(selected(), ElementsAre("a.jpg"));
  EXPECT_EQ(disk.read("photos/a.jpg"), "content of a.jpg");
}

TEST_F(PhotoActionsTest, UndoesDeletionsOneByOne) {
  hang({"a.jpg", "b.jpg", "c.jpg", "d.jpg"});
  select({"d.jpg"});
  actions.rotate(PhotoActions::Clockwise);
  awaitJobs();
  trash.refused = "c.jpg";
  select({"a.jpg", "c.jpg", "d.jpg"});
  actions.trash();
  awaitJobs();
  EXPECT_THAT(listed(), ElementsAre("b.jpg", "c.jpg"));
  EXPECT_THAT(selected(), ElementsAre("c.jpg"));
  EXPECT_EQ(actions.note(), "已将 2 项移到废纸篓");
  EXPECT_TRUE(actions.noteCanBeUndone());
  EXPECT_EQ(actions.failure(), "1 项没能移到废纸篓");
  EXPECT_EQ(actions.failureLines(), QStringList("c.jpg：它所在的磁盘没有废纸篓"));
  select({"b.jpg"});
  actions.trash();
  awaitJobs();

  actions.undo();
  awaitJobs();
  EXPECT_THAT(selected(), ElementsAre("b.jpg"));
  disk.write("photos/d.jpg", "a new one");
  actions.undo();
  awaitJobs();
  EXPECT_EQ(actions.note(), "原来的名字已被占用，放回为 d_2.jpg");
  EXPECT_THAT(selected(), ElementsAre("a.jpg", "d_2.jpg"));
  queue.runUntil([this] { return listed().size() == 5; });
  EXPECT_EQ(disk.read("photos/d_2.jpg"), "turned 6");
  actions.undo(); // of the rotation, under the new name
  awaitJobs();
  EXPECT_FALSE(actions.canUndo());
  EXPECT_EQ(disk.read("photos/d_2.jpg"), "turned 8");
  EXPECT_EQ(disk.read("photos/d.jpg"), "a new one");
}

TEST_F(PhotoActionsTest, ReportsAFailedUndoAndAllowsAnother) {
  hang({"a.jpg", "b.jpg"});
  select({"a.jpg", "b.jpg"});
  actions.trash();
  awaitJobs();
  files.failAlways(Operation::moveNoReplace, EACCES);
  actions.undo();
  awaitJobs();
  EXPECT_EQ(actions.failureLines(), (QStringList{"a.jpg：没有权限", "b.jpg：没有权限"}));
  files.mend(Operation::moveNoReplace);
  ASSERT_TRUE(actions.canUndo());
  actions.undo();
  awaitWall({"a.jpg", "b.jpg"});
  EXPECT_EQ(actions.note(), "已放回 2 项");

  select({"b.jpg"}); // the old name is taken meanwhile
  actions.rename("c");
  disk.write("photos/b.jpg", "another");
  actions.undo();
  awaitJobs();
  EXPECT_THAT(actions.failure().toStdString(), ::testing::EndsWith("可按 Ctrl+Z 重试"));
  std::filesystem::remove(disk / "photos/b.jpg");
  actions.undo();
  awaitJobs();
  EXPECT_EQ(disk.read("photos/b.jpg"), "content of b.jpg");
  awaitWall({"a.jpg", "b.jpg"}); // a scan may have missed the file while it got its name back

  select({"a.jpg", "b.jpg"}); // an unwritable picture and a missing one
  actions.rotate(PhotoActions::Clockwise);
  awaitJobs();
  std::filesystem::remove(disk / "photos/b.jpg");
  decoder.setOriented(FakeDecoder::kFault(fennick::PictureFault::timedOut));
  actions.undo();
  awaitJobs();
  EXPECT_EQ(actions.failure(), "2 项没能撤销，可按 Ctrl+Z 重试");
  decoder.setOriented("turned ");
  actions.undo();
  awaitJobs();
  EXPECT_EQ(disk.read("photos/a.jpg"), "turned 8");
  EXPECT_FALSE(actions.canUndo());
}

TEST_F(PhotoActionsTest, ContinuesAStoppedUndo) {
  hang({"a.jpg", "b.jpg", "c.jpg"});
  select({"a.jpg", "b.jpg", "c.jpg"});
  actions.rotate(PhotoActions::Clockwise);
  awaitJobs();
  std::binary_semaphore reached{0};
  std::binary_semaphore stopped{0};
  files.before(Operation::replace, [&] { reached.release(), stopped.acquire(); }); // of the first picture
  actions.undo();
  reached.acquire();
  actions.jobs()->stop();
  files.before(Operation::replace, {});
  stopped.release();
  awaitJobs();
  EXPECT_EQ(disk.read("photos/a.jpg") + disk.read("photos/b.jpg"), "turned 8turned 6");
  EXPECT_EQ(actions.note(), "已停止，还有 2 项没有撤销");
  EXPECT_TRUE(actions.noteCanBeUndone());
  actions.undo();
  awaitJobs();
  EXPECT_EQ(disk.read("photos/a.jpg") + disk.read("photos/c.jpg"), "turned 8turned 8");
  EXPECT_FALSE(actions.canUndo());
}

TEST_F(PhotoActionsTest, ForgetsADeletionAfterTheTrashWasEmptied) {
  hang({"a.jpg"});
  select({"a.jpg"});
  actions.trash();
  awaitJobs();
  std::filesystem::remove_all(disk / "trash");
  actions.undo();
  awaitJobs();
  EXPECT_FALSE(actions.failure().isEmpty());
  EXPECT_FALSE(actions.canUndo());
}

TEST_F(PhotoActionsTest, KeepsTheNoteForAWhileOrWhileHeld) {
  hang({"a.jpg", "b.jpg", "c.jpg"});
  const auto deleteOne = [this](const char *name) {
    select({name});
    actions.trash();
    awaitJobs();
  };
  deleteOne("a.jpg");
  queue.advance(fennick::Seconds(5));
  deleteOne("b.jpg"); // restarts the note's time
  queue.advance(fennick::Seconds(5));
  EXPECT_EQ(actions.note(), "已将 1 项移到废纸篓");
  queue.advance(fennick::Seconds(4));
  EXPECT_EQ(actions.note(), "");
  EXPECT_TRUE(actions.canUndo()) << "the keyboard takes it back even then";
  deleteOne("c.jpg");
  actions.setNoteHeld(true);
  queue.advance(fennick::Seconds(60));
  EXPECT_NE(actions.note(), "");
  actions.setNoteHeld(false);
  queue.advance(fennick::Seconds(9));
  EXPECT_EQ(actions.note(), "");
}

TEST_F(PhotoActionsTest, RotatesPicturesButNotVideos) {
  hang({"a.jpg", "b.jpg", "c.mov"});
  select({"a.jpg", "b.jpg", "c.mov"});
  actions.rotate(PhotoActions::Clockwise);
  awaitJobs();
  EXPECT_EQ(disk.read("photos/a.jpg") + disk.read("photos/b.jpg"), "turned 6turned 6");
  EXPECT_EQ(disk.read("photos/c.mov"), "content of c.mov");
  actions.undo();
  awaitJobs();
  EXPECT_EQ(disk.read("photos/a.jpg"), "turned 8");
  EXPECT_FALSE(actions.canUndo());
  decoder.setOriented(FakeDecoder::kFault(fennick::PictureFault::unsupported));
  actions.rotate(PhotoActions::Anticlockwise);
  awaitJobs();
  EXPECT_EQ(actions.failure(), "2 张没能旋转");
  EXPECT_EQ(actions.failureLines(), (QStringList{"a.jpg：写入失败", "b.jpg：写入失败"}));
  EXPECT_FALSE(actions.canUndo());
}

TEST_F(PhotoActionsTest, ReportsProgressAndStopsAfterTheCurrentFile) {
  hang({"a.jpg", "b.jpg", "c.jpg"});
  select({"a.jpg", "b.jpg", "c.jpg"});
  decoder.hold();
  actions.rotate(PhotoActions::Clockwise);
  actions.rotate(PhotoActions::Clockwise);
  decoder.awaitHeld(1);
  EXPECT_EQ(actions.jobs()->total(), 6);
  actions.jobs()->stop();
  EXPECT_TRUE(actions.jobs()->stopping());
  decoder.release();
  awaitJobs();
  EXPECT_EQ(disk.read("photos/a.jpg"), "turned 6");
  EXPECT_EQ(disk.read("photos/b.jpg"), "content of b.jpg");
  EXPECT_EQ(actions.jobs()->total(), 0);
  actions.undo(); // of the single file
  awaitJobs();
  EXPECT_EQ(disk.read("photos/a.jpg"), "turned 8");
}

} // namespace
} // namespace quarrow
