#include "Quarrow/App/ServerModel.h"

#include "Quarrow/App/AddressEntry.h"
#include "tests/Support/QRReader.h"

#include <QByteArray>
#include <QVariantList>

#include <gtest/gtest.h>

#include <map>

namespace quarrow {
namespace {

using fennick::LANAddress;

const LANAddress kWifi{.interface = "wlan0", .address = "192.168.1.20", .kind = LANAddress::Kind::wifi};
const LANAddress kWired{.interface = "eth0", .address = "10.0.0.5", .kind = LANAddress::Kind::wired};

TEST(ServerModel, UsesThePreferredAddressOrTheFirst) {
  ServerModel model;
  model.setAccessKey("secret");
  model.setPort(8001);
  EXPECT_EQ(model.phoneURL(), std::nullopt);
  model.setAddresses({kWifi, kWired});
  EXPECT_EQ(model.phoneURL(), "http://192.168.1.20:8001/?k=secret");
  model.setPreferredInterface("eth0");
  EXPECT_EQ(model.shortcutUploadURL(), "http://10.0.0.5:8001/upload?k=secret");
  model.setPreferredInterface("usb0");
  EXPECT_EQ(model.baseURL(), "http://192.168.1.20:8001");
  model.setPort(std::nullopt);
  EXPECT_EQ(model.shortcutUploadURL(), std::nullopt);
}

// QML relies on this: an unchanged value updates no binding, a changed one every binding that depends on it.
TEST(ServerModel, AnnouncesEachChangeOnce) {
  ServerModel model;
  std::map<std::string, int> announced;
  const auto count = [&](const char *name, auto signal) {
    QObject::connect(&model, signal, [&announced, name] { ++announced[name]; });
  };
  count("port", &ServerModel::portChanged);
  count("addresses", &ServerModel::addressesChanged);
  count("error", &ServerModel::errorChanged);
  count("status", &ServerModel::localNetworkStatusChanged);
  count("shared", &ServerModel::sharedCountChanged);
  count("url", &ServerModel::phoneURLChanged);
  count("qr", &ServerModel::qrImageChanged);
  for (int i = 0; i < 2; ++i) {
    model.setPort(8000);
    model.setAddresses({kWired});
    model.setError("wrong");
    model.setLocalNetworkStatus({.kind = LocalNetworkStatus::Kind::failed, .message = "late"});
    model.setShared("photos", 3);
    model.refreshQR();
  }
  for (const auto &[name, times] : announced)
    EXPECT_EQ(times, 1) << name;
  EXPECT_EQ(announced.size(), 7U);

  const auto status = model.property("localNetworkStatus").value<LocalNetworkStatus>();
  EXPECT_EQ(status.message, "late");
  const auto entry = model.property("addresses").toList().at(0);
  EXPECT_EQ(entry.value<AddressEntry>(), (AddressEntry{"eth0", "10.0.0.5", "wired"}));
  EXPECT_EQ(model.property("port").toInt(), 8000);
}

} // namespace
} // namespace quarrow
