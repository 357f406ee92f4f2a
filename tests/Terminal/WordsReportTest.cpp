#include "Quarrow/Terminal/WordsReport.h"

#include <gmock/gmock.h>

namespace quarrow {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

template <typename Action>
std::string printedBy(Action action) {
  ::testing::internal::CaptureStdout();
  action();
  return ::testing::internal::GetCapturedStdout();
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

} // namespace
} // namespace quarrow
