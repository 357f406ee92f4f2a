#include "tests/App/ControllerFixture.h"

namespace quarrow::test {
namespace {

using fennick::FirewallFinding;
using Outcome = fennick::LocalNetworkProbe::Outcome;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Optional;
using ::testing::SizeIs;
using ::testing::StartsWith;

TEST_F(ControllerTest, StartsInOrderAndListensOnTheNextTurn) {
  store.update([](auto &settings) {
    settings.hotKeyPreset = 2;
    settings.preferredInterface = "eth0";
  });
  options.arguments = {"--show-settings", "--show-panel", "photo.jpg"};
  make();
  controller->start();
  EXPECT_THAT(desktop.take(),
              ElementsAre("tray item", "hot key 2", "close panel", "main", "close panel", "settings"));
  EXPECT_TRUE(network.change);
  EXPECT_EQ(controller->server().accessKey(), store.accessKey());
  EXPECT_EQ(controller->server().preferredInterface(), "eth0");
  EXPECT_EQ(controller->server().port(), std::nullopt);

  queue.run();
  const auto port = controller->server().port();
  ASSERT_TRUE(port);
  EXPECT_THAT(logLines(" on "),
              ElementsAre("fennick: starting server on 0", fmt::format("fennick: listening on {}", *port)));
  EXPECT_THAT(ask("/health"), StartsWith("HTTP/1.1 200"));
  queue.advance(fennick::Seconds(0.4));
  EXPECT_THAT(desktop.take(), IsEmpty());
  queue.advance(fennick::Seconds(0.1));
  EXPECT_THAT(desktop.take(), ElementsAre("panel"));
  desktop.hotKey.pressed();
  EXPECT_THAT(desktop.take(), ElementsAre("panel"));
}

TEST_F(ControllerTest, OpensTheFirstWindowByOnboardingAndKindOfStart) {
  struct Case {
    bool onboardingDone;
    bool isLoginItem;
    std::vector<std::string> shown;
  };
  for (const auto &each : {Case{true, false, {"close panel", "main"}}, Case{true, true, {}},
                           Case{false, false, {"onboarding"}}, Case{false, true, {"onboarding"}}}) {
    std::ignore = preferences.setFlag("onboardingDone", each.onboardingDone);
    desktop.isLoginItem = each.isLoginItem;
    make();
    desktop.take();
    controller->start();
    EXPECT_EQ(std::vector(desktop.asked.begin() + 2, desktop.asked.end()), each.shown);
  }
  controller->handleArguments({});
  EXPECT_EQ(desktop.take().back(), "onboarding");
  controller->finishOnboarding();
  controller->handleArguments({});
  EXPECT_EQ(desktop.take().back(), "main");
  controller->handleArguments({"--show-panel"});
  queue.run();
  EXPECT_THAT(desktop.take(), ElementsAre("panel"));
  EXPECT_TRUE(fennick::FilePreferences(disk / "state/preferences.json").flag("onboardingDone"));
}

TEST_F(ControllerTest, ListensOnlyOnTheLastOfTwoQuickPortChanges) {
  start();
  const auto first = *controller->server().port();
  const auto [second, third] = twoFreePorts();
  controller->settings().update([&](auto &settings) { settings.preferredPort = second; });
  controller->settings().update([&](auto &settings) { settings.preferredPort = third; });
  queue.run();
  EXPECT_THAT(controller->server().port(), Optional(third));
  EXPECT_THAT(ask("/health"), StartsWith("HTTP/1.1 200"));
  EXPECT_FALSE(fennick::test::LoopbackClient("127.0.0.1", first).isConnected());
  EXPECT_FALSE(fennick::test::LoopbackClient("127.0.0.1", second).isConnected());
  EXPECT_THAT(logLines(fmt::format("starting server on {}", second)), IsEmpty());
  EXPECT_THAT(logLines(fmt::format("starting server on {}", third)), SizeIs(1));
}

TEST_F(ControllerTest, AppliesOtherChangesToTheNextRequestWithoutARestart) {
  start();
  change([](auto &settings) {
    settings.naming = fennick::PrefixSequenceNaming{};
    settings.sessionSubfolder = "party";
    settings.maxUploadBytes = 20;
    settings.hotKeyPreset = 4;
  });
  EXPECT_THAT(upload(), HasSubstr("IMG_001.jpg"));
  EXPECT_THAT(upload(std::string(kJPEG) + std::string(20, 'x')), StartsWith("HTTP/1.1 413"));
  EXPECT_THAT(disk.names("photos/party"), ElementsAre("IMG_001.jpg"));
  EXPECT_THAT(desktop.take(), ::testing::Contains("hot key 4"));
  EXPECT_THAT(logLines("starting server"), SizeIs(1));
}

TEST_F(ControllerTest, ReplacesTheKeyAtOnceAndLiftsBans) {
  start();
  for (int i = 0; i < 10; ++i)
    ask("/?k=guess");
  EXPECT_THAT(ask("/?k=" + controller->settings().accessKey()), StartsWith("HTTP/1.1 429"));
  network.change({wifi()});
  const auto before = controller->server().phoneURL();
  const auto oldKey = controller->settings().accessKey();
  controller->settings().resetAccessKey();
  queue.run();
  EXPECT_NE(controller->server().phoneURL(), before);
  for (int i = 0; i < 20; ++i) // an open page with the old key counts as one failure
    EXPECT_THAT(ask("/?k=" + oldKey), StartsWith("HTTP/1.1 403"));
  EXPECT_THAT(ask("/?k=" + controller->server().accessKey()), StartsWith("HTTP/1.1 200"));
}

TEST_F(ControllerTest, ShowsTheChosenGalleryFolderOrTheOneForUploads) {
  disk.write("photos/best/a.jpg");
  disk.write("photos/best/b.mov");
  disk.write("photos/best/.hidden.jpg");
  disk.write("outside/c.jpg");
  disk.write("photos/2024-05-01/d.png");
  disk.write("photos/2024-05-01/e.heic");
  start();
  struct Case {
    std::optional<std::string> chosen;
    std::string shown;
    std::int64_t count;
  };
  change([](auto &settings) { settings.dateSubfolders = true; });
  for (const auto &[chosen, shown, count] :
       {Case{"best", "best", 1}, Case{"best/", "best", 1}, Case{std::nullopt, "2024-05-01", 2},
        Case{"", "2024-05-01", 2}, Case{"../outside", "2024-05-01", 2}, Case{"a..b", "2024-05-01", 2},
        Case{"missing", "2024-05-01", 2}, Case{"/etc", "2024-05-01", 2}}) {
    change([&](auto &settings) { settings.galleryFolder = chosen; });
    EXPECT_EQ(controller->server().sharedFolderName(), shown) << chosen.value_or("none");
    EXPECT_EQ(controller->server().sharedCount(), count);
  }
  change([&](auto &settings) { settings.galleryFolder = "later"; });
  disk.write("photos/later/g.jpg");
  queue.runUntil([&] { return controller->server().sharedFolderName() == "later"; });
  disk.write("photos/later/h.jpg");
  queue.runUntil([&] {
    queue.advance(fennick::Seconds(1));
    return controller->server().sharedCount() == 2;
  });
  change([&](auto &settings) { settings.galleryFolder.reset(); });
  EXPECT_THAT(ask("/gallery?k=" + store.accessKey()), Not(HasSubstr("d.png")));
  change([](auto &settings) { settings.galleryEnabled = true; });
  EXPECT_THAT(ask("/gallery?k=" + store.accessKey()), HasSubstr("d.png"));
}

TEST_F(ControllerTest, SkipsATakenPortAndClearsTheErrorOfAFailedStart) {
  const auto taken = fennick::ListeningSocket::open(0);
  store.update([&](auto &settings) { settings.preferredPort = taken->port(); });
  start();
  EXPECT_GT(*controller->server().port(), taken->port());

  const auto last = fennick::ListeningSocket::open(65535);
  bool failed = false;
  QObject::connect(&*controller, &AppController::serverFailed, [&] { failed = true; });
  change([](auto &settings) { settings.preferredPort = 65535; });
  EXPECT_TRUE(failed);
  EXPECT_EQ(controller->server().port(), std::nullopt);
  EXPECT_EQ(controller->server().error(), "无法启动服务：端口 65535 已被占用");
  EXPECT_THAT(logLines("server failed"), SizeIs(1));
  change([](auto &settings) { settings.preferredPort = freePort(); });
  EXPECT_TRUE(controller->server().port());
  EXPECT_EQ(controller->server().error(), std::nullopt);
}

TEST_F(ControllerTest, ChecksAfterEachNetworkChangeAndIgnoresOutdatedResults) {
  start();
  auto &server = controller->server();
  const auto at = [&](const std::string &address) { return fmt::format("{}:{}", address, *server.port()); };
  EXPECT_EQ(server.localNetworkStatus().message, "没有可用的局域网地址");
  EXPECT_EQ(server.qrImage(), std::nullopt);

  network.change({wifi(), wired()});
  EXPECT_EQ(server.localNetworkStatus().kind, LocalNetworkStatus::Kind::unknown);
  EXPECT_TRUE(server.qrImage());
  change([](auto &settings) { settings.preferredInterface = "eth0"; });
  EXPECT_THAT(network.probes, ElementsAre(at("192.168.1.20"), at("10.0.0.5")));

  const auto after = [&](const Outcome &outcome) {
    network.change({wifi(), wired()});
    network.answer(outcome);
    return server.localNetworkStatus();
  };
  using Kind = LocalNetworkStatus::Kind;
  EXPECT_EQ(after({Outcome::Kind::reachable}), (LocalNetworkStatus{Kind::ok, ""}));
  EXPECT_EQ(after({Outcome::Kind::timeout}), (LocalNetworkStatus{Kind::failed, "连接超时"}));
  EXPECT_EQ(after({Outcome::Kind::unreachable, "bad response"}),
            (LocalNetworkStatus{Kind::failed, "bad response"}));
  network.change({});
  EXPECT_EQ(server.qrImage(), std::nullopt);
  EXPECT_FALSE(network.answer);
  EXPECT_EQ(server.property("checkAdvice").toString(), "请把电脑连上 Wi-Fi 或网线，然后再检查一次。");

  network.change({wifi()}); // a check of the old server is ignored
  controller->settings().update([](auto &settings) { settings.preferredPort = freePort(); });
  queue.runUntil(
      [&] { return !network.answer || server.port() == controller->settings().settings().preferredPort; });
  EXPECT_EQ(network.probes.back(), at("192.168.1.20"));
  controller->stop();
  EXPECT_FALSE(network.change);
}

TEST_F(ControllerTest, ReportsABlockingFirewallWithTheCommand) {
  using Kind = FirewallFinding::Kind;
  using Port = FirewallFinding::Port;
  network.firewall = {.kind = Kind::ufw, .port = Port::closed, .command = "sudo ufw allow 8000/tcp"};
  start();
  network.change({wired()});
  EXPECT_EQ(network.asked, "eth0");
  EXPECT_EQ(controller->server().property("firewallCommand").toString(), "sudo ufw allow 8000/tcp");
  EXPECT_THAT(controller->server().property("firewallAdvice").toString().toStdString(),
              AllOf(HasSubstr("ufw"), HasSubstr("挡住")));
  network.firewall = {.kind = Kind::ufw, .port = Port::open};
  controller->runLocalNetworkCheck();
  EXPECT_EQ(controller->server().property("firewallAdvice").toString(), "");
}

TEST_F(ControllerTest, RemovesThePartFileOfAnUploadThatAPortChangeAborts) {
  start();
  fennick::test::LoopbackClient phone("127.0.0.1", *controller->server().port());
  phone.send(fmt::format("POST /upload?k={} HTTP/1.1\r\nContent-Length: 1000\r\n\r\n{}",
                         controller->settings().accessKey(), kJPEG));
  queue.runUntil([&] { return controller->progress().counter().snapshot().uploads == 1; });
  change([](auto &settings) { settings.preferredPort = freePort(); });
  EXPECT_THAT(phone.readToEnd(), IsEmpty());
  EXPECT_THAT(upload(), StartsWith("HTTP/1.1 200"));
  controller->stop();
  EXPECT_THAT(disk.names("photos/.fennick-incoming"), IsEmpty());
}

TEST_F(ControllerTest, ReportsATakenShortcutUntilAnotherWorks) {
  start();
  desktop.grantsHotKey = false;
  change([](auto &settings) { settings.hotKeyPreset = 1; });
  EXPECT_EQ(controller->server().error(), "全局快捷键注册失败，可能被其他 App 占用");
  desktop.grantsHotKey = true;
  change([](auto &settings) { settings.hotKeyPreset = 2; });
  EXPECT_EQ(controller->server().error(), std::nullopt);
  desktop.hotKey.refused();
  EXPECT_TRUE(controller->server().error());
  change([](auto &settings) { settings.hotKeyPreset.reset(); });
  EXPECT_EQ(controller->server().error(), std::nullopt);
}

} // namespace
} // namespace quarrow::test
