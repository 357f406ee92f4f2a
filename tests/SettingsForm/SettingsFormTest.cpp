#include "FennickCore/Settings/SettingsFields.h"
#include "tests/Settings/FullSettings.h"
#include "tests/SettingsForm/FormFixture.h"

#include <set>

namespace quarrow::test {
namespace {

using fennick::AppSettings;
using fennick::PrefixSequenceNaming;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

std::string utf8(const QString &text) { return text.toStdString(); }

// Collects the fields, including nested ones, that are equal in both records.
void collectSame(const auto &one, const auto &other, const std::string &prefix, std::set<std::string> &same) {
  forEachField(one, [&]<typename Field>(std::string_view key, const Field &value) {
    forEachField(other, [&]<typename Other>(std::string_view otherKey, const Other &otherValue) {
      if constexpr (std::is_same_v<Field, Other>) {
        if (key != otherKey)
          return;
        const std::string name = prefix + std::string(key);
        if constexpr (fennick::SettingsRecord<Field>)
          collectSame(value, otherValue, name + ".", same);
        else if (value == otherValue)
          same.insert(name);
      }
    });
  });
}

TEST_F(FormTest, SetsEveryField) {
  const auto entry = disk.write("viewer.desktop");
  form.setPort(9000);
  form.setDateSubfolders(true);
  form.setNumbered(true);
  form.setPrefix("展会");
  form.setSeparator("-");
  form.setDigits(4);
  form.setStart(100);
  form.setUploadLimit(5000);
  form.setSessionSubfolder(" 婚礼 ");
  form.setGalleryFolder("精选/第一天");
  form.setLimitsFolder(true);
  form.setFolderLimit(200);
  form.setAutoPrune(false);
  imaging.setLimitsPixels(true);
  imaging.setMaxPixels(1600);
  imaging.setLimitsBytes(true);
  imaging.setMaxKilobytes(1500);
  imaging.setFormat("jpeg");
  imaging.setQuality(70);
  imaging.setQualityFloor(25);
  imaging.setStripLocation(true);
  imaging.setStripAllMetadata(true);
  imaging.setKeepOriginal(true);
  workflow.setCopyToClipboard(true);
  workflow.chooseApplication(QString::fromStdString(entry.string()), "查看器");
  workflow.setPlaySound(true);
  workflow.setNotify(true);

  AppSettings expected = fennick::test::fullSettings();
  expected.saveFolderBookmark.reset();
  expected.preferredInterface.reset();
  expected.hotKeyPreset.reset();
  expected.galleryEnabled = false;
  expected.folderLimit = 200;
  expected.imaging.maxPixels = 1600;
  expected.workflow.openWithAppBookmark = fennick::test::bookmarkOf(entry.string());
  EXPECT_EQ(stored(), expected);
  std::set<std::string> untouched;
  collectSame(AppSettings(), stored(), "", untouched);
  // These are set through Shell. Every other field needs a control.
  EXPECT_THAT(untouched, UnorderedElementsAre("saveFolderBookmark", "preferredInterface", "hotKeyPreset",
                                              "galleryEnabled"));
}

TEST_F(FormTest, ExplainsAndDoesNotStoreInvalidInput) {
  struct Case {
    std::function<void(SettingsForm &)> enter;
    std::function<QString(const SettingsForm &)> error;
    std::string said;
  };
  form.setNumbered(true);
  const auto before = stored();
  const auto port = &SettingsForm::portError;
  const auto session = &SettingsForm::sessionError;
  const auto prefix = &SettingsForm::prefixError;
  const auto separator = &SettingsForm::separatorError;
  const auto enters = [](auto setter, auto value) { return [=](SettingsForm &to) { (to.*setter)(value); }; };
  const QString tooLong(201, 'a');
  for (const auto &[enter, error, said] :
       {Case{enters(&SettingsForm::setPort, 80), port, "管理员权限"},
        Case{enters(&SettingsForm::setPort, 0), port, "1024 到 65535"},
        Case{enters(&SettingsForm::setPort, 65536), port, "1024 到 65535"},
        Case{enters(&SettingsForm::setSessionSubfolder, "originals"), session, "留给程序"},
        Case{enters(&SettingsForm::setSessionSubfolder, ".hidden"), session, "隐藏"},
        Case{enters(&SettingsForm::setSessionSubfolder, "a/b"), session, "一层"},
        Case{enters(&SettingsForm::setSessionSubfolder, ".."), session, "隐藏"},
        Case{enters(&SettingsForm::setSessionSubfolder, QString(300, 'a')), session, "太长"},
        Case{enters(&SettingsForm::setPrefix, "a/b"), prefix, "“/”"},
        Case{enters(&SettingsForm::setPrefix, ".a"), prefix, "隐藏"},
        Case{enters(&SettingsForm::setPrefix, "a\nb"), prefix, "不能用"},
        Case{enters(&SettingsForm::setPrefix, tooLong), prefix, "放不下"},
        Case{enters(&SettingsForm::setSeparator, "/"), separator, "“/”"},
        Case{enters(&SettingsForm::setSeparator, tooLong), separator, "放不下"}}) {
    enter(form);
    EXPECT_THAT(utf8(error(form)), HasSubstr(said));
    EXPECT_EQ(stored(), before) << said;
  }
  form.setGalleryFolder("../outside");
  EXPECT_EQ(stored(), before);

  form.setPort(8000); // the current value is always accepted
  form.setSessionSubfolder({});
  change([](auto &now) { now.naming = PrefixSequenceNaming{.prefix = "DSC", .separator = ""}; });
  for (const auto &error : {form.portError(), form.sessionError(), form.prefixError(), form.separatorError()})
    EXPECT_EQ(utf8(error), "");
  EXPECT_EQ(utf8(form.prefix()), "DSC");

  form.setPort(80);
  change([](auto &now) { now.preferredPort = 8123; });
  EXPECT_EQ(utf8(form.portError()), "");
}

TEST_F(FormTest, RestoresDisabledValues) {
  form.setNumbered(true);
  form.setPrefix("Trip");
  form.setLimitsFolder(true);
  form.setFolderLimit(80);
  imaging.setLimitsPixels(true);
  imaging.setMaxPixels(1000);
  form.setNumbered(false);
  form.setLimitsFolder(false);
  imaging.setLimitsPixels(false);
  EXPECT_EQ(stored(), AppSettings());
  EXPECT_EQ(utf8(form.prefix()), "Trip");
  form.setNumbered(true);
  form.setLimitsFolder(true);
  imaging.setLimitsPixels(true);
  EXPECT_EQ(std::get<PrefixSequenceNaming>(settings().naming).prefix, "Trip");
  EXPECT_EQ(settings().folderLimit, 80);
  EXPECT_EQ(settings().imaging.maxPixels, 1000);
}

TEST_F(FormTest, PredictsNameAndFolderOfTheNextPhoto) {
  const auto day = fennick::localDayText(queue.clock().now());
  const auto second = fennick::localSecondText(queue.clock().now());
  disk.write("photos/IMG_041.jpg"), disk.write("photos/note.txt"), disk.write("photos/.hidden.jpg");
  form.setNumbered(true);
  EXPECT_EQ(utf8(form.nextName()), ""); // the form is not watched
  form.setWatched(true);
  runUntil([&] { return !form.nextName().isEmpty(); });
  EXPECT_EQ(utf8(form.nextName()), "IMG_042.jpg");
  form.setLimitsFolder(true);
  EXPECT_EQ(utf8(form.folderLimitMeaning()), "现在有 1 张，超过 500 张时，最旧的移到废纸篓");
  form.setAutoPrune(false);
  EXPECT_THAT(utf8(form.folderLimitMeaning()), HasSubstr("不再接收"));

  disk.write("photos/trip/IMG_7.jpg");
  form.setSessionSubfolder("trip");
  imaging.setFormat("png"); // changes the extension
  runUntil([&] { return form.nextName() == "IMG_008.png"; });
  EXPECT_EQ(form.nextFolder().toStdString(), (disk / "photos/trip").string());
  form.setDateSubfolders(true);
  runUntil([&] { return form.nextFolder().toStdString() == (disk / "photos" / day / "trip").string(); });
  EXPECT_EQ(utf8(form.nextName()), "IMG_001.png");
  form.setNumbered(false);
  runUntil([&] { return utf8(form.nextName()) == second + ".png"; });
}

TEST_F(FormTest, OffersExistingGalleryFoldersAndTheChosenOne) {
  for (const char *folder : {"b/deep", "a", ".hidden", "originals", "export"})
    std::filesystem::create_directories(disk / "photos" / folder);
  const auto values = [&] {
    std::vector<std::string> all;
    for (const auto &each : form.galleryFolders())
      all.push_back(utf8(each.toMap().value("value").toString()));
    return all;
  };
  form.setWatched(true);
  runUntil([&] { return form.galleryFolders().size() > 1; });
  EXPECT_THAT(values(), ::testing::ElementsAre("", "a", "b", "b/deep", "export"));
  form.setGalleryFolder("b/deep");
  EXPECT_THAT(utf8(form.galleryFolderMeaning()), HasSubstr("只看得到"));
  form.setGalleryFolder("gone");
  EXPECT_EQ(values().back(), "gone");
  EXPECT_THAT(utf8(form.galleryFolderMeaning()), HasSubstr("现在不在了"));
}

} // namespace
} // namespace quarrow::test
