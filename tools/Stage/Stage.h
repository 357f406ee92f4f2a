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

// A coordinator that was never started, with controlled surroundings: views show the state that it is given,
// and commands are recorded. One object at a time; it provides QML's singletons. Main thread.
class Stage : public QObject, private IdleController<MadeUpPhotos> {
  Q_OBJECT

public:
  Stage();
  ~Stage() override;

  // Resets to a working state: two networks, a port, nothing received.
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

  // Shows these files on the wall, of the size `photo`; the first one has focus. Every picture is a
  // landscape.
  Q_INVOKABLE void hang(const QStringList &names, const QSize &photo = {4032, 3024});
  // Shows one file on the wall that is not a picture.
  Q_INVOKABLE void hangBroken(const QString &name);
  // Waits until the quick look has its picture and its details.
  Q_INVOKABLE void awaitLook();
  // Gives the first file on the wall the record of a processed upload with a kept original.
  void rememberOrigin();
  using IdleController<MadeUpPhotos>::decoder;

  // Updates the settings' examples from the folder.
  Q_INVOKABLE void lookAhead();
  // Pretends that these applications are installed.
  Q_INVOKABLE void offerApplications(const QStringList &names);
  [[nodiscard]] SettingsForm &form() { return form_; }

  // Uses the folder of the wall as save folder.
  Q_INVOKABLE void saveWithPhotos() { server().setSaveFolder(disk / "photos"); }
  // Selects these photos.
  Q_INVOKABLE void select(const QStringList &names);
  // Waits until actions and input are done.
  Q_INVOKABLE void awaitActions();
  // Returns the sorted names in the folder of the wall.
  Q_INVOKABLE QStringList photoNames();

  // Fills the save folder with files of these names, the first one the newest, and shows them.
  Q_INVOKABLE void fillWall(const QStringList &names);
  Q_INVOKABLE void arrive(const QString &name); // adds one file
  Q_INVOKABLE void losePhotos();                // with their folder
  Q_INVOKABLE void clearWall();
  // Returns the names on the wall in its order.
  Q_INVOKABLE static QStringList wallNames();
  // Waits until the wall shows these in this order.
  Q_INVOKABLE void awaitWall(const QStringList &names);
  // Thumbnails on the disk without those in memory, and a second wall with them.
  [[nodiscard]] std::unique_ptr<fennick::Thumbnails> anotherThumbnails() {
    return std::make_unique<fennick::Thumbnails>(files, disk / "cache" / "thumbs", decoder);
  }
  [[nodiscard]] std::unique_ptr<PhotoWall> anotherWall(fennick::Thumbnails &thumbnails) {
    return std::make_unique<PhotoWall>(wallParts(thumbnails));
  }
  // Moves the clock.
  Q_INVOKABLE void pass(double seconds) { queue.advance(fennick::Seconds(seconds)); }
  // Waits until a photo of this name is on the wall.
  Q_INVOKABLE void awaitOnWall(const QString &name);

  [[nodiscard]] ServerModel &server() { return controller.server(); }
  [[nodiscard]] Shell &shell() { return shell_; }

  // Returns the commands to the desktop since the last call.
  Q_INVOKABLE QStringList asked();
  // Returns whether motion is reduced after this signal of the desktop's portal.
  Q_INVOKABLE static bool isStillAfter(const QString &group, const QString &key, const QVariant &value);
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
