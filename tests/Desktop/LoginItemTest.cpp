#include "Quarrow/Desktop/LoginItem.h"

#include "tests/Support/TemporaryFolder.h"

#include <gio/gdesktopappinfo.h>
#include <gmock/gmock.h>

#include <fstream>
#include <memory>
#include <sstream>

namespace quarrow {
namespace {

class LoginItemTest : public ::testing::Test {
protected:
  fennick::test::TemporaryFolder disk;
  LoginItem item{disk / "config/autostart", "/usr/bin/tevrin"};
};

TEST_F(LoginItemTest, UsesTheEntryAsTheOnlyState) {
  EXPECT_FALSE(item.isEnabled());
  EXPECT_TRUE(item.setEnabled(false));
  EXPECT_TRUE(item.setEnabled(true));
  EXPECT_TRUE(item.isEnabled());
  EXPECT_EQ(disk.names("config/autostart"), std::vector<std::string>{"tevrin.desktop"});

  const std::string entry = disk.read("config/autostart/tevrin.desktop");
  for (const char *off : {"Hidden=true\n", "X-GNOME-Autostart-enabled = false\n"}) {
    disk.write("config/autostart/tevrin.desktop", entry + off);
    EXPECT_FALSE(item.isEnabled()) << off;
    EXPECT_TRUE(item.setEnabled(false));
    EXPECT_EQ(disk.read("config/autostart/tevrin.desktop"), entry + off);
  }
  disk.write("config/autostart/tevrin.desktop", entry + "Hidden=false\n[Other]\nHidden=true\n");
  EXPECT_TRUE(item.isEnabled());

  EXPECT_TRUE(item.setEnabled(false));
  EXPECT_FALSE(item.isEnabled());
  EXPECT_TRUE(disk.names("config/autostart").empty());
}

// The entry is started by GLib's own reader.
TEST_F(LoginItemTest, QuotesAnyProgramPath) {
  const auto heard = disk / "heard";
  for (const char *name : {"tevrin", "a b", R"(quote"d `x` $HOME \back)", "照片's"}) {
    const auto program =
        disk.write(std::string(name) + "/run", "#!/bin/sh\necho \"$# $1\" >> '" + heard.string() + "'\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    ASSERT_TRUE(LoginItem(disk.path(), program).setEnabled(true));
    ASSERT_EQ(std::system(("mkfifo '" + heard.string() + "'").c_str()), 0);
    const std::unique_ptr<GDesktopAppInfo, decltype(&::g_object_unref)> entry(
        ::g_desktop_app_info_new_from_filename((disk / "tevrin.desktop").c_str()), &::g_object_unref);
    ASSERT_TRUE(entry) << name;
    ASSERT_TRUE(::g_app_info_launch(G_APP_INFO(entry.get()), nullptr, nullptr, nullptr)) << name;
    std::ostringstream said;
    said << std::ifstream(heard).rdbuf();
    EXPECT_EQ(said.str(), "1 --login-item\n") << name;
    std::filesystem::remove(heard);
  }
  // GLib resolves a program with a percent sign under the wrong name.
  ASSERT_TRUE(LoginItem(disk.path(), "/opt/100%f/tevrin").setEnabled(true));
  EXPECT_THAT(disk.read("tevrin.desktop"),
              ::testing::HasSubstr("Exec=\"/opt/100%%f/tevrin\" --login-item\n"));
}

} // namespace
} // namespace quarrow
