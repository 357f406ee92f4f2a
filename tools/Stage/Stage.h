#pragma once

#include "FennickCore/Upload/UploadActivity.h"
#include "Quarrow/Actions/PhotoActions.h"
#include "Quarrow/Desktop/LoginItem.h"
#include "Quarrow/Desktop/Shell.h"
#include "Quarrow/Look/QuickLook.h"
#include "Quarrow/SettingsForm/SettingsForm.h"
#include "Quarrow/Wall/PhotoWall.h"
#include "tests/App/Surroundings.h"
#include "tools/Stage/MadeUpPhotos.h"

#include <QObject>
#include <QSize>
#include <QStringList>

#include <memory>
#include <optional>

namespace quarrow::test {

// A real coordinator that was never started, with everything around it in hand: views show what it is told to
// hold, and what they ask for is asked of it. There is one at a time; it is what QML's Server, Progress and
// Shell are. Main thread.
class Stage : public QObject, private IdleController<MadeUpPhotos> {
  Q_OBJECT

public:
  Stage();
  ~Stage() override;

  // Everything is fine: two networks, a port, nothing in the way, nothing received yet.
  Q_INVOKABLE void reset();
  Q_INVOKABLE void setAddresses(const QStringList &interfaces);
  Q_INVOKABLE void setPort(int port); // 0: no server listens
  Q_INVOKABLE void setFolder(const QString &path);
  Q_INVOKABLE void failCheck(const QString &message);
  Q_INVOKABLE void blockByFirewall();
  Q_INVOKABLE void setError(const QString &error);
  Q_INVOKABLE void receive(const QString &note);
  Q_INVOKABLE void beginUpload();
  Q_INVOKABLE void endUploads();
  Q_INVOKABLE void setWaiting(int photos) { server().setWaitingPhotos(photos); }
  Q_INVOKABLE void shareFolder(const QString &name, int count) {
    server().setShared(name.toStdString(), count);
  }

  // The wall shows these files, of the size `photo`; the first one has focus. Every picture is a
  // made-up landscape.
  Q_INVOKABLE void hang(const QStringList &names, const QSize &photo = {4032, 3024});
  // The same for one file that is no picture inside.
  Q_INVOKABLE void hangBroken(const QString &name);
  // The quick look has its picture, if there is one, and knows all it can know.
  Q_INVOKABLE void awaitLook();
  // The first file on the wall was sent by a phone, processed, and its original kept.
  void rememberOrigin();
  using IdleController<MadeUpPhotos>::decoder;

  // The settings' examples are those of the folder.
  Q_INVOKABLE void lookAhead();
  // These applications are installed, and were found.
  Q_INVOKABLE void offerApplications(const QStringList &names);
  [[nodiscard]] SettingsForm &form() { return form_; }

  // Files are saved where the photos on the wall lie.
  Q_INVOKABLE void saveWithPhotos() { server().setSaveFolder(disk / "photos"); }
  // Selects these of the photos on the wall.
  Q_INVOKABLE void select(const QStringList &names);
  // What was asked of the photo actions is done, and what was typed has been looked at.
  Q_INVOKABLE void awaitActions();
  // The names in the folder that the wall shows, sorted.
  Q_INVOKABLE QStringList photoNames();

  // The save folder holds made-up files of these names, the first one the newest, and the wall shows them.
  Q_INVOKABLE void fillWall(const QStringList &names);
  Q_INVOKABLE void arrive(const QString &name); // one more
  Q_INVOKABLE void losePhotos();                // with their folder
  Q_INVOKABLE void clearWall();
  // The names on the wall, in its order.
  Q_INVOKABLE static QStringList wallNames();
  // Runs until the wall shows these, in this order.
  Q_INVOKABLE void awaitWall(const QStringList &names);
  // Thumbnails that are on the disk but not in memory, and a second wall over the same folder that shows
  // them.
  [[nodiscard]] std::unique_ptr<fennick::Thumbnails> anotherThumbnails() {
    return std::make_unique<fennick::Thumbnails>(files, disk / "cache" / "thumbs", decoder);
  }
  [[nodiscard]] std::unique_ptr<PhotoWall> anotherWall(fennick::Thumbnails &thumbnails) {
    return std::make_unique<PhotoWall>(wallParts(thumbnails));
  }
  // Lets time pass.
  Q_INVOKABLE void pass(double seconds) { queue.advance(fennick::Seconds(seconds)); }
  // Runs what other threads hand over until a photo of this name is on the wall.
  Q_INVOKABLE void awaitOnWall(const QString &name);

  [[nodiscard]] ServerModel &server() { return controller.server(); }
  [[nodiscard]] Shell &shell() { return shell_; }

  // What was asked of the desktop since the last time.
  Q_INVOKABLE QStringList asked();
  // Whether nothing moves after the desktop's portal has said this.
  Q_INVOKABLE static bool isStillAfter(const QString &group, const QString &key, const QVariant &value);
  // What is stored.
  Q_INVOKABLE QString accessKey() { return QString::fromStdString(controller.settings().accessKey()); }

private:
  void hangFiles(const QStringList &names);
  void makePhoto(const QString &name, int age); // in minutes
  [[nodiscard]] PhotoWall::Parts wallParts(fennick::Thumbnails &thumbnails) {
    return {.library = library(),
            .selection = controller.selection(),
            .server = server(),
            .commands = controller,
            .thumbnails = thumbnails,
            .preferences = preferences,
            .mainQueue = queue,
            .clock = queue.clock()};
  }

  LoginItem loginItem_{disk / "autostart", "/usr/bin/tevrin"};
  Shell shell_{controller.settings(), controller.server(), controller, loginItem_};
  PhotoWall wall_{wallParts(controller.thumbnails())};
  QuickLook look_{library(), decoder, controller.thumbnails(), queue};
  PhotoActions actions_{{.library = library(),
                         .selection = controller.selection(),
                         .server = controller.server(),
                         .commands = controller,
                         .tools = {.files = files, .decoder = decoder, .trash = trash},
                         .desktop = desktop,
                         .mainQueue = queue}};
  ImagingForm imaging_{controller.settings(), library(), decoder, queue};
  WorkflowForm workflow_{controller.settings(), library(), desktop, queue, disk / "sample"};
  SettingsForm form_{{.settings = controller.settings(),
                      .library = library(),
                      .server = controller.server(),
                      .folders = controller,
                      .files = files,
                      .mainQueue = queue,
                      .clock = queue.clock(),
                      .imaging = imaging_,
                      .workflow = workflow_}};
  std::optional<fennick::UploadActivity::Upload> upload_;
  int hangings_ = 0; // how often the wall was filled
};

} // namespace quarrow::test
