#include "Quarrow/Terminal/TerminalKeys.h"

#include "tests/Terminal/RecordingReport.h"

#include <gmock/gmock.h>

namespace quarrow {
namespace {

using fennick::LANAddress;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class TerminalKeysTest : public ::testing::Test {
protected:
  // Returns the commands that the keys caused; each string arrives at once.
  std::string done(const std::vector<std::string> &typed) {
    std::string result;
    const auto note = [&](const char *what) { return [&result, what] { result += what; }; };
    TerminalKeys keys({.showCode = note("code "),
                       .nextAddress = note("next "),
                       .resetKey = note("reset "),
                       .openFolder = note("open "),
                       .quit = note("quit ")},
                      report);
    for (const auto &each : typed)
      keys.typed(each);
    return result;
  }

  test::RecordingReport report;
};

TEST_F(TerminalKeysTest, RunsTheCommandsOfTheKeys) {
  EXPECT_EQ(done({"c", "N", "o", "x\n \xC3\xA9", "cq"}), "code next open code quit ");
  EXPECT_EQ(done({"\x1bOq", "\x1b[15~", "c\x1bOn"}), "code ") << "function keys are no letters";
  EXPECT_EQ(done({"?"}), "");
  const auto told = report.take();
  ASSERT_EQ(told.size(), 1U);
  for (const char key : {'c', 'n', 'k', 'o', 'q'})
    EXPECT_THAT(told.front(), HasSubstr(std::string("  ") + key + "  "));
}

TEST_F(TerminalKeysTest, ResetsTheKeyOnlyAfterConfirmation) {
  EXPECT_EQ(done({"y", "k", "y", "y", "kY"}), "reset reset ");
  EXPECT_THAT(report.take(), ElementsAre(HasSubstr("重新扫码"), HasSubstr("重新扫码")));
  for (const char *no : {"n", "q", "k", "\n", "\x1b", "\x1b[A"}) {
    EXPECT_EQ(done({"k", no, "y", "c"}), "code ") << no;
    EXPECT_THAT(report.take(), ElementsAre(HasSubstr("y resets"), HasSubstr("stays")));
  }
}

TEST(NextInterfaceTest, CyclesThroughTheInterfaces) {
  const LANAddress wifi{"wlan0", "192.168.1.20", LANAddress::Kind::wifi};
  const LANAddress wifiToo{"wlan0", "192.168.7.20", LANAddress::Kind::wifi};
  const LANAddress cable{"eth0", "10.0.0.5", LANAddress::Kind::wired};
  const LANAddress other{"eth1", "10.1.0.5", LANAddress::Kind::wired};
  const std::vector<LANAddress> all{wifi, wifiToo, cable, other};
  EXPECT_EQ(nextInterface(all, wifi), "eth0");
  EXPECT_EQ(nextInterface(all, cable), "eth1");
  EXPECT_EQ(nextInterface(all, other), "wlan0");
  EXPECT_FALSE(nextInterface(std::vector{wifi, wifiToo}, wifi) || nextInterface({}, std::nullopt));
}

} // namespace
} // namespace quarrow
