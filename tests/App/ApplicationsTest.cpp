#include "Quarrow/App/Applications.h"

#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace quarrow::applications {
namespace {

using ::testing::HasSubstr;

class ApplicationsTest : public ::testing::Test {
protected:
  // Makes a desktop entry whose program reports its file, its blocked signals and whether it leads a session.
  std::filesystem::path makeEntry() {
    const auto program = disk.write(
        "program", fmt::format("#!/bin/sh\n"
                               "read -r _ _ _ _ _ session _ < /proc/$$/stat\n"
                               "blocked=$(sed -n s/SigBlk:.//p /proc/self/status)\n"
                               "echo \"got $1, blocked $blocked, session $((session - $$))\" > {}\n",
                               pipe.string()));
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    return disk.write(
        "entry.desktop",
        fmt::format("[Desktop Entry]\nType=Application\nName=Test\nExec={} %f\n", program.string()));
  }
  // Waits for the report of the program.
  std::string heard() const {
    std::ostringstream text;
    text << std::ifstream(pipe).rdbuf();
    return text.str();
  }

  fennick::test::TemporaryFolder disk;
  const std::filesystem::path pipe = disk / "pipe";
};

TEST_F(ApplicationsTest, StartsTheProgramWithTheFileDetachedFromOurTerminal) {
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const auto entry = makeEntry();
  const auto photo = disk.write("a photo 照片.jpg");
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
  EXPECT_TRUE(openWith(entry, photo));
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  EXPECT_EQ(heard(), fmt::format("got {}, blocked 0000000000000000, session 0\n", photo.string()));
}

TEST_F(ApplicationsTest, ReportsEntriesThatAreNotApplications) {
  for (const auto &entry : {disk / "gone.desktop", disk.write("text.desktop", "no entry"),
                            disk.write("missing.desktop", "[Desktop Entry]\nType=Application\nName=Test\n"
                                                          "Exec=/nonexistent/program %f\n")}) {
    const auto opened = openWith(entry, disk.write("a.jpg"));
    ASSERT_FALSE(opened);
    EXPECT_THAT(opened.error(), HasSubstr(entry.filename().string()));
  }
}

class InstalledApplicationsTest : public ::testing::Test {
protected:
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  void install(const std::string &name, const std::string &more) const {
    disk.write(fmt::format("share/applications/{}.desktop", name),
               fmt::format("[Desktop Entry]\nType=Application\nName={}\n{}\n", name, more));
  }
  // Prints the applications for photo.jpg. The desktop is read once per process, so this runs in a process of
  // its own.
  void list() const {
    const auto at = [this](const char *variable, const char *folder) {
      ::setenv(variable, (disk / folder).c_str(), 1);
    };
    at("XDG_DATA_HOME", "home");
    at("XDG_DATA_DIRS", "share");
    at("XDG_CONFIG_HOME", "config");
    at("XDG_CONFIG_DIRS", "none");
    for (const auto &each : installedApplications("photo.jpg"))
      fmt::print(stderr, "{}{} [{}]\n", each.isMadeForIt ? "* " : "", each.name, each.icon);
    fmt::print(stderr, "end\n");
    std::_Exit(0);
  }

  fennick::test::TemporaryFolder disk;
};

TEST_F(InstalledApplicationsTest, ListsTheDefaultFirstThenProgramsForPictures) {
  install("Viewer", "Exec=true %f\nIcon=viewer");
  install("Editor", "Exec=true %U\nIcon=/opt/editor.png");
  install("Album", "Exec=true %F");
  install("Zip", "Exec=true %F\nIcon=zip");
  install("Cards", "Exec=true");
  install("Inner", "Exec=true %f\nNoDisplay=true");
  install("Gone", "Exec=true %f\nHidden=true");
  install("tevrin", "Exec=true %f");
  disk.write("share/mime/globs2", "50:image/jpeg:*.jpg\n");
  disk.write("share/applications/mimeinfo.cache",
             "[MIME Cache]\nimage/jpeg=Album.desktop;Editor.desktop;Inner.desktop;Viewer.desktop;"
             "tevrin.desktop;\n");
  disk.write("config/mimeapps.list", "[Default Applications]\nimage/jpeg=Viewer.desktop\n");
  EXPECT_EXIT(list(), ::testing::ExitedWithCode(0),
              "^\\* Viewer \\[viewer\\]\n\\* Album \\[\\]\n\\* Editor \\[/opt/editor.png\\]\n"
              "Zip \\[zip\\]\nend\n$");
  EXPECT_EXIT((std::filesystem::remove_all(disk / "share"), list()), ::testing::ExitedWithCode(0), "^end\n$");
}

} // namespace
} // namespace quarrow::applications
