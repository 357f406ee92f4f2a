#include "FennickCore/Platform/Applications.h"

#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>

#include <fstream>
#include <sstream>

namespace fennick {
namespace {

using ::testing::HasSubstr;

class ApplicationsTest : public ::testing::Test {
protected:
  // A desktop entry whose program tells which file it got, which signals it blocks and whether it leads a
  // session of its own.
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
  // Waits until the program has ended its report.
  std::string heard() const {
    std::ostringstream text;
    text << std::ifstream(pipe).rdbuf();
    return text.str();
  }

  test::TemporaryFolder disk;
  const std::filesystem::path pipe = disk / "pipe";
};

TEST_F(ApplicationsTest, AnEntrysProgramGetsTheFileAndNeitherOurSignalsNorOurTerminal) {
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

TEST_F(ApplicationsTest, WhatIsNoApplicationIsSaid) {
  for (const auto &entry : {disk / "gone.desktop", disk.write("text.desktop", "no entry"),
                            disk.write("missing.desktop", "[Desktop Entry]\nType=Application\nName=Test\n"
                                                          "Exec=/nonexistent/program %f\n")}) {
    const auto opened = openWith(entry, disk.write("a.jpg"));
    ASSERT_FALSE(opened);
    EXPECT_THAT(opened.error(), HasSubstr(entry.filename().string()));
  }
}

} // namespace
} // namespace fennick
