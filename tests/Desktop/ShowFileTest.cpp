#include "Quarrow/Desktop/ShowFile.h"

#include "tests/Desktop/FakeService.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace quarrow {
namespace {

// Makes a program that writes its arguments to `pipe` the default for photos and folders.
void choosePrograms(const fennick::test::TemporaryFolder &disk, const std::filesystem::path &pipe) {
  const auto program = disk.write("program", fmt::format("#!/bin/sh\necho \"$1\" > '{}'\n", pipe.string()));
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  const std::filesystem::path home = std::getenv("XDG_DATA_HOME");
  std::filesystem::create_directories(home / "applications");
  std::ofstream(home / "applications/shower.desktop")
      << fmt::format("[Desktop Entry]\nType=Application\nName=Test\nExec={} %f\n", program.string());
  std::ofstream(home / "applications/mimeapps.list")
      << "[Default Applications]\nimage/jpeg=shower.desktop\ninode/directory=shower.desktop\n";
}

TEST(ShowFileTest, SelectsTheFileOrOpensItsFolder) {
  const fennick::test::TemporaryFolder disk;
  const auto pipe = disk / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  choosePrograms(disk, pipe);
  const auto heard = [&] {
    std::ostringstream text;
    text << std::ifstream(pipe).rdbuf();
    return text.str();
  };
  const auto photo = disk.write("照片 1#%.jpg");
  QObject context;

  openFile(photo);
  EXPECT_EQ(heard(), photo.string() + "\n");
  showInFolder({photo}, QDBusConnection::sessionBus(), context);
  test::awaitErrors();
  EXPECT_EQ(heard(), disk.path().string() + "\n");

  QStringList asked;
  const test::FakeService manager(QStringLiteral("org.freedesktop.FileManager1"),
                                  [&](const QDBusMessage &call) {
                                    asked = call.arguments().at(0).toStringList();
                                    return call.createReply();
                                  });
  showInFolder({photo}, QDBusConnection::sessionBus(), context);
  test::runUntil([&] { return !asked.empty(); });
  EXPECT_EQ(
      asked.front(),
      QStringLiteral("file://%1/%E7%85%A7%E7%89%87%201%23%25.jpg").arg(QString::fromStdString(disk.path())));
}

} // namespace
} // namespace quarrow
