#include "Quarrow/Terminal/WordsReport.h"

#include "Quarrow/App/PhoneAddress.h"

#include <gmock/gmock.h>

namespace quarrow {
namespace {

using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

template <typename Action>
std::string printedBy(Action action) {
  ::testing::internal::CaptureStdout();
  action();
  return ::testing::internal::GetCapturedStdout();
}

const Report::Listening kListening{.port = 8001,
                                   .preferredPort = 8000,
                                   .accessKey = "key",
                                   .phoneURL = "http://192.168.1.20:8001/?k=key",
                                   .uploadURL = "http://192.168.1.20:8001/upload?k=key",
                                   .saveFolder = "/photos"};

TEST(WordsReportTest, PrintsTheAddressAndUnusualSettings) {
  WordsReport report({.qr = true, .terminal = false, .colour = true, .keys = true});
  EXPECT_THAT(printedBy([&] { report.listening(kListening, Report::Reason::started); }),
              AllOf(HasSubstr("http://192.168.1.20:8001/?k=key"), HasSubstr("▀"), HasSubstr("/photos"),
                    HasSubstr("首选端口被占用，实际使用 8001"), HasSubstr("press ?")));

  Report::Listening alone = kListening;
  alone.phoneURL.reset();
  alone.preferredPort = alone.port;
  EXPECT_THAT(printedBy([&] { report.listening(alone, Report::Reason::started); }),
              AllOf(HasSubstr("没有可用的局域网地址"), HasSubstr("http://127.0.0.1:8001/?k=key"),
                    Not(HasSubstr("首选端口")), Not(HasSubstr("▀"))));
}

TEST(WordsReportTest, PrintsChangesBeforeTheCode) {
  using Reason = Report::Reason;
  WordsReport report({.qr = true, .terminal = false, .colour = false, .keys = true});
  for (const auto &[reason, why] :
       {std::pair(Reason::address, "The address has changed"), std::pair(Reason::key, "The key was reset"),
        std::pair(Reason::asked, "")})
    EXPECT_THAT(printedBy([&] { report.listening(kListening, reason); }),
                AllOf(ContainsRegex(std::string(why) + "(.|\n)*▀(.|\n)*8001/[?]k=key"),
                      Not(HasSubstr("首选端口")), Not(HasSubstr("/photos")), Not(HasSubstr("press ?"))));
  EXPECT_THAT(printedBy([&] { report.listening(kListening, Reason::folder); }),
              AllOf(HasSubstr("The save folder has changed"), HasSubstr("/photos"), Not(HasSubstr("▀"))));
}

TEST(WordsReportTest, PrintsTheFirewallAdvice) {
  WordsReport report({.qr = false, .terminal = false, .colour = false});
  const Report::Check passed{.passed = true, .message = ""};
  EXPECT_EQ(printedBy([&] { report.check(passed); }), "");
  EXPECT_THAT(printedBy([&] { report.check({.passed = false, .message = "no route"}); }),
              HasSubstr("no route"));
  EXPECT_THAT(printedBy([&] { report.check(passed); }), HasSubstr("answers again"));
  EXPECT_EQ(printedBy([&] { report.check(passed); }), "");

  fennick::FirewallFinding finding{.kind = fennick::FirewallFinding::Kind::ufw,
                                   .port = fennick::FirewallFinding::Port::closed,
                                   .command = "sudo ufw allow 8001/tcp"};
  EXPECT_THAT(printedBy([&] { report.firewall(finding); }),
              AllOf(HasSubstr("keeps phones out"), HasSubstr("\n  sudo ufw allow 8001/tcp\n")));
  finding.port = fennick::FirewallFinding::Port::unknown;
  EXPECT_THAT(printedBy([&] { report.firewall(finding); }),
              AllOf(HasSubstr("If phones cannot connect"), HasSubstr("\n  sudo ufw allow 8001/tcp\n")));
}

TEST(WordsReportTest, UpdatesProgressInPlaceOnATerminal) {
  WordsReport pipe({.qr = false, .terminal = false, .colour = false});
  EXPECT_FALSE(pipe.showsProgress());
  EXPECT_EQ(printedBy([&] { pipe.received({"a.jpg", "/photos/a.jpg", 2'400'000, "a.jpg：2.4 MB"}); }),
            "✓ a.jpg：2.4 MB\n");

  WordsReport terminal({.qr = false, .terminal = true, .colour = true});
  const fennick::UploadActivity::Snapshot half{
      .uploads = 2, .receivedBytes = 5'000'000, .expectedBytes = 10'000'000, .totalBytes = 5'000'000};
  EXPECT_EQ(printedBy([&] { terminal.progress(half, 1'500'000); }),
            "\x1b[K↓ 2 个文件 / files · 5 MB / 10 MB · 50 % · 1.5 MB/s\r");
  EXPECT_EQ(printedBy([&] { terminal.waiting(3); }),
            "\x1b[K↓ 2 个文件 / files · 5 MB / 10 MB · 50 % · 1.5 MB/s · 还有 3 张照片等待处理 / photos "
            "waiting: 3\r");
  terminal.waiting(0);
  EXPECT_EQ(printedBy([&] { terminal.progress({}, 0); }), "\x1b[K");
  EXPECT_EQ(printedBy([&] { pipe.waiting(3); }), "");
}

TEST(WordsReportTest, RemovesControlCharactersFromNames) {
  WordsReport report({.qr = false, .terminal = false, .colour = false});
  EXPECT_THAT(printedBy([&] { report.received({"", "", 1, "a\x1b[2J\u009B31m\n.jpg"}); }),
              AllOf(Not(HasSubstr("\x1b[2J")), Not(HasSubstr("\u009B")), HasSubstr("a")));
}

TEST(PhoneAddressTest, UsesThePreferredInterfaceWhileItIsUp) {
  using fennick::LANAddress;
  const std::vector<LANAddress> addresses{{"wlan0", "192.168.1.20", LANAddress::Kind::wifi},
                                          {"eth0", "10.0.0.5", LANAddress::Kind::wired},
                                          {"eth0", "10.0.0.6", LANAddress::Kind::wired}};
  EXPECT_EQ(preferredAddress(addresses, "eth0")->address, "10.0.0.5");
  EXPECT_EQ(preferredAddress(addresses, "eth7")->address, "192.168.1.20");
  EXPECT_FALSE(preferredAddress({}, "eth0") || baseURL(std::nullopt, 8000) || baseURL(addresses[0], {}));
  EXPECT_EQ(phoneURL(baseURL(addresses[0], 8001).value(), "key"), "http://192.168.1.20:8001/?k=key");
}

} // namespace
} // namespace quarrow
