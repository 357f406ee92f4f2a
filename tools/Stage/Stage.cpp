#include "tools/Stage/Stage.h"

#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Storage/PhotoOrigin.h"
#include "Quarrow/Views/Appearance.h"
#include "Quarrow/Views/Registration.h"
#include "tools/Stage/Landscape.h"

#include <QDir>

#include <algorithm>
#include <filesystem>

namespace quarrow::test {

namespace {

fennick::LANAddress addressOf(const QString &interface) {
  using Kind = fennick::LANAddress::Kind;
  if (interface == "wlan0")
    return {.interface = "wlan0", .address = "192.168.1.20", .kind = Kind::wifi};
  return {.interface = interface.toStdString(), .address = "10.0.0.105", .kind = Kind::wired};
}

} // namespace

Stage::Stage() {
  ServerSingleton::instance = &controller.server();
  ProgressSingleton::instance = &controller.progress();
  ImportsSingleton::instance = &controller.imports();
  ShellSingleton::instance = &shell_;
  WallSingleton::instance = &wall_;
  LookSingleton::instance = &look_;
  ActionsSingleton::instance = &actions_;
  SettingsSingleton::instance = &form_;
  controller.progress().setWatched(true);
}

Stage::~Stage() {
  ServerSingleton::instance = nullptr;
  ProgressSingleton::instance = nullptr;
  ImportsSingleton::instance = nullptr;
  ShellSingleton::instance = nullptr;
  WallSingleton::instance = nullptr;
  LookSingleton::instance = nullptr;
  ActionsSingleton::instance = nullptr;
  SettingsSingleton::instance = nullptr;
}

void Stage::reset() {
  endUploads();
  server().setAccessKey("7GQ2M4XK9P");
  server().setPort(8000);
  setAddresses({"wlan0"});
  server().setLocalNetworkStatus({.kind = LocalNetworkStatus::Kind::ok});
  server().setFirewall(std::nullopt);
  server().setError(std::nullopt);
  server().setLastNote(std::nullopt);
  setWaiting(0);
  setFolder(QDir::homePath() + "/Pictures/fennick");
  shareFolder("fennick", 128);
  shell_.setGalleryEnabled(false);
  shell_.setPreferredInterface({});
  clearWall();
  asked();
}

void Stage::setAddresses(const QStringList &interfaces) {
  std::vector<fennick::LANAddress> addresses;
  for (const auto &each : interfaces)
    addresses.push_back(addressOf(each));
  server().setAddresses(std::move(addresses));
  server().refreshQR();
}

void Stage::setPort(int port) {
  server().setPort(port == 0 ? std::nullopt : std::optional(static_cast<std::uint16_t>(port)));
}

void Stage::setFolder(const QString &path) { server().setSaveFolder(path.toStdString()); }

void Stage::failCheck(const QString &message) {
  server().setLocalNetworkStatus({.kind = LocalNetworkStatus::Kind::failed, .message = message});
}

void Stage::blockByFirewall() {
  using Finding = fennick::FirewallFinding;
  server().setFirewall(Finding{
      .kind = Finding::Kind::ufw, .port = Finding::Port::closed, .command = "sudo ufw allow 8000/tcp"});
}

void Stage::hang(const QStringList &names, const QSize &photo) {
  decoder.setFacts(fennick::PictureFacts{.type = fennick::PictureType::jpeg,
                                         .frames = 1,
                                         .width = photo.width(),
                                         .height = photo.height(),
                                         .orientation = {}});
  decoder.setThumbnail(landscape(photo.scaled(1600, 1600, Qt::KeepAspectRatio)));
  hangFiles(names);
}

void Stage::hangBroken(const QString &name) {
  using fennick::PictureFault;
  decoder.setFacts(fennick::test::FakeDecoder::kFault(PictureFault::undecodable));
  decoder.setThumbnail(fennick::test::FakeDecoder::kFault(PictureFault::undecodable));
  hangFiles({name});
}

void Stage::hangFiles(const QStringList &names) {
  auto &library = controller.library();
  library.setFolder(std::nullopt);
  std::filesystem::remove_all(disk / "photos");
  // On a separate day, so that caches do not confuse files of equal names.
  const auto day = std::chrono::sys_days(std::chrono::May / 1 / 2024) + std::chrono::days(hangings_++);
  fennick::Instant taken = day + std::chrono::hours(2);
  for (const QString &name : names) {
    const auto file = disk.write("photos/" + name.toStdString(), std::string(2'412'345, 'p'));
    std::ignore = fennick::setModificationTime(file, taken -= std::chrono::minutes(7));
  }
  library.setFolder(disk / "photos");
  queue.runUntil([&] { return std::ssize(library.items()) == names.size(); });
  wall_.moveCurrent(-wall_.count());
}

void Stage::awaitLook() {
  queue.runUntil([this] {
    return look_.kind() == QuickLook::Nothing ||
           (look_.kind() != QuickLook::Loading && !look_.details().isEmpty());
  });
}

void Stage::rememberOrigin() {
  const auto file = controller.library().items().front().url;
  disk.write("photos/originals/IMG_0412.HEIC");
  fennick::writeOrigin(file, {.address = "192.168.1.34",
                              .name = "IMG_0412.HEIC",
                              .receivedAt = fennick::Instant(std::chrono::seconds(1'714'527'000)),
                              .note = "3.2 MB → 4032px · q85 · 2.4 MB · JPEG · 已转正 / rotated",
                              .original = "IMG_0412.HEIC"});
  decoder.setDetails(fennick::PictureDetails{.camera = "Apple iPhone 15 Pro",
                                             .lens = "iPhone 15 Pro back triple camera 6.765mm f/1.78",
                                             .taken = "2024-05-01 09:23:11",
                                             .offset = "+08:00",
                                             .exposure = "1/125 s · f/1.8 · ISO 100 · 24 mm"});
}

void Stage::setError(const QString &error) {
  server().setError(error.isEmpty() ? std::nullopt : std::optional(error.toStdString()));
}

void Stage::receive(const QString &note) {
  server().setLastNote(note.toStdString());
  shell_.countReceived();
}

void Stage::beginUpload() {
  upload_.emplace(controller.progress().counter(), 48'000'000);
  queue.run();
  upload_->received(20'000'000);
  queue.advance(fennick::Seconds(0.25));
}

void Stage::endUploads() {
  upload_.reset();
  queue.advance(fennick::Seconds(1));
}

void Stage::makePhoto(const QString &name, int age) {
  const auto file = disk.write("photos/" + name.toStdString(), "");
  const auto bytes = fennick::isVideoName(name.toStdString()) ? 24'000'000U : 2'400'000U;
  std::filesystem::resize_file(file, bytes + static_cast<unsigned>(std::abs(age)) % 30 * 100'000);
  std::ignore = fennick::setModificationTime(file, queue.clock().now() - std::chrono::minutes(age));
}

void Stage::fillWall(const QStringList &names) {
  decoder.makeUp(true);
  std::filesystem::remove_all(disk / "photos");
  for (qsizetype i = 0; i < names.size(); ++i)
    makePhoto(names[i], static_cast<int>(i));
  auto &library = controller.library();
  library.setFolder({});
  library.setFolder(disk / "photos");
  queue.runUntil([&] { return library.isListed(); });
}

void Stage::arrive(const QString &name) {
  makePhoto(name, -1);
  controller.library().noteAdded(disk / ("photos/" + name.toStdString()));
  awaitOnWall(name);
}

void Stage::awaitOnWall(const QString &name) {
  queue.runUntil([&] { return wallNames().contains(name); });
}

void Stage::awaitWall(const QStringList &names) {
  queue.runUntil([&] { return wallNames() == names; });
}

void Stage::losePhotos() {
  auto &library = controller.library();
  library.setFolder(disk / "gone");
  queue.runUntil([&] { return library.isListed(); });
}

void Stage::clearWall() {
  decoder.makeUp(false);
  controller.library().setFolder({});
  wall_.setFilter(PhotoWall::All);
  wall_.setTileSize(PhotoWall::kUsualTile);
}

QStringList Stage::wallNames() {
  QStringList names;
  for (const auto &item : WallSingleton::instance->model()->items())
    names.append(QString::fromStdString(item.name));
  return names;
}

bool Stage::isStillAfter(const QString &group, const QString &key, const QVariant &value) {
  Appearance appearance;
  appearance.follow(group, key, QDBusVariant(value));
  return appearance.reducedMotion();
}

void Stage::lookAhead() {
  form_.setWatched(true);
  queue.runUntil([this] { return !form_.nextName().isEmpty() && !form_.imaging()->exampleBusy(); });
}

void Stage::offerApplications(const QStringList &names) {
  queue.runUntil([this] { return !form_.workflow()->isSearching(); });
  std::vector<applications::InstalledApplication> applications;
  for (const auto &name : names)
    applications.push_back({.entry = disk.write(name.toStdString() + ".desktop"),
                            .name = name.toStdString(),
                            .icon = {},
                            .isMadeForIt = true});
  form_.workflow()->applications()->setApplications(std::move(applications));
}

void Stage::select(const QStringList &names) {
  PhotoSelection::Paths chosen;
  for (const auto &item : controller.library().items())
    if (names.contains(QString::fromStdString(item.name)))
      chosen.insert(item.url);
  controller.selection().set(std::move(chosen));
}

void Stage::awaitActions() {
  queue.advance(fennick::Seconds(0.2));
  bool answered = false; // comes after all earlier queries
  actions_.jobs()->ask([] { return true; }, [&answered](bool) { answered = true; });
  queue.runUntil([&] { return answered; });
}

QStringList Stage::photoNames() {
  QStringList names;
  for (const auto &name : disk.names("photos"))
    names.append(QString::fromStdString(name));
  return names;
}

QStringList Stage::asked() {
  QStringList all;
  for (const auto &each : desktop.take())
    all.append(QString::fromStdString(each));
  return all;
}

} // namespace quarrow::test
