#include "Quarrow/Terminal/TerminalView.h"

#include "Quarrow/Terminal/TerminalDesktop.h"
#include "tests/Support/ManualQueue.h"
#include "tests/Terminal/RecordingReport.h"

#include <gmock/gmock.h>

namespace quarrow {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Finding = fennick::FirewallFinding;
using Kind = fennick::LANAddress::Kind;

const fennick::LANAddress kHome{.interface = "wlan0", .address = "192.168.1.20", .kind = Kind::wifi};
const fennick::LANAddress kCable{.interface = "eth0", .address = "10.0.0.5", .kind = Kind::wired};
const LocalNetworkStatus kFailed{.kind = LocalNetworkStatus::Kind::failed, .message = "connection refused"};
const Finding kClosed{.kind = Finding::Kind::ufw, .port = Finding::Port::closed, .command = "ufw allow"};

class TerminalViewTest : public ::testing::Test {
protected:
  TerminalViewTest() {
    server.setAccessKey("one");
    server.setSaveFolder("/photos");
  }
  void listen() {
    server.setPort(8000);
    server.setAddresses({kHome, kCable});
    report.take();
  }

  ServerModel server;
  fennick::test::ManualQueue queue;
  UploadProgress progress{queue, queue.clock()};
  test::RecordingReport report;
  TerminalView view{server, progress, 8000, report};
};

TEST_F(TerminalViewTest, WaitsForPortAndAddressesBeforeTheFirstReport) {
  server.setPort(8001);
  EXPECT_TRUE(view.hasListened());
  server.setFirewall(kClosed);
  server.setLocalNetworkStatus(kFailed); // without an address
  EXPECT_THAT(report.take(), IsEmpty());
  server.setAddresses({});
  EXPECT_THAT(report.take(), ElementsAre("started: nowhere of 8000 in /photos", "firewall: ufw allow"));
  server.setAddresses({kHome});
  EXPECT_THAT(report.take(), ElementsAre("address: http://192.168.1.20:8001/?k=one of 8000 in /photos"));
}

TEST_F(TerminalViewTest, ReportsEachChangeOfTheAddressOnce) {
  listen();
  server.setPreferredInterface("eth0");
  server.setAddresses({kCable}); // the address in use stays
  server.setAccessKey("two");
  server.setPort(std::nullopt); // another server is about to take over
  server.setPort(8001);
  server.setSaveFolder("/other");
  EXPECT_THAT(report.take(), ElementsAre("address: http://10.0.0.5:8000/?k=one of 8000 in /photos",
                                         "key: http://10.0.0.5:8000/?k=two of 8000 in /photos",
                                         "port: http://10.0.0.5:8001/?k=two of 8000 in /photos",
                                         "folder: http://10.0.0.5:8001/?k=two of 8000 in /other"));
  server.setAddresses({});
  report.take();
  server.setAccessKey("three");
  EXPECT_THAT(report.take(), ElementsAre("key: nowhere of 8000 in /other"));
}

TEST_F(TerminalViewTest, ReportsNewErrorsOnly) {
  listen();
  using Status = LocalNetworkStatus;
  for (const auto &status : {kFailed, Status{}, kFailed, Status{}, Status{.kind = Status::Kind::ok}})
    server.setLocalNetworkStatus(status);
  EXPECT_THAT(report.take(), ElementsAre("check failed: connection refused", "check passed"));

  server.setFirewall(Finding{.kind = Finding::Kind::none, .port = Finding::Port::unknown, .command = ""});
  server.setFirewall(Finding{.kind = Finding::Kind::ufw, .port = Finding::Port::open, .command = ""});
  server.setFirewall(kClosed);
  server.setFirewall(std::nullopt);
  EXPECT_THAT(report.take(), ElementsAre("firewall: ufw allow"));

  server.setError("the folder is gone");
  server.setError(std::nullopt);
  EXPECT_THAT(report.take(), ElementsAre("error the folder is gone", "solved"));
}

TEST_F(TerminalViewTest, ShowsProgressUntilUploadsEnd) {
  {
    fennick::UploadActivity::Upload upload(progress.counter(), 100);
    upload.received(40);
    queue.run();
  }
  queue.advance(fennick::Seconds(1));
  server.setWaitingPhotos(3);
  server.setWaitingPhotos(3);
  view.received({.url = "/photos/a.jpg", .bytes = 100, .note = "a.jpg：100 字节"});
  EXPECT_THAT(report.take(), ElementsAre("progress 40 of 100", "progress 0 of 0", "waiting 3",
                                         "received a.jpg (/photos/a.jpg, 100): a.jpg：100 字节"));
}

} // namespace
} // namespace quarrow
