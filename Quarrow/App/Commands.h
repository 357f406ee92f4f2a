#pragma once

#include "FennickCore/Storage/SaveDestination.h"

#include <filesystem>
#include <span>
#include <string>
#include <vector>

// What windows ask of the coordinator. AppController implements all three; each class receives only the ones
// that it uses. Main thread.
namespace quarrow {

// Shows an error of something that the user asked for.
class ProblemReports {
public:
  virtual ~ProblemReports() = default;
  virtual void reportProblem(const std::string &problem) = 0;
};

// Commands of the photo wall and of the actions on its photos.
class PhotoCommands : public virtual ProblemReports {
public:
  // Returns false while the folder that the library shows does not exist, or its drive is unplugged.
  [[nodiscard]] virtual bool hasLibraryFolder() const = 0;
  // Copies files of this computer into the save folder, like those of a phone but without the workflow's
  // actions. A file that could not be copied becomes the model's error.
  virtual void importFiles(std::vector<std::filesystem::path> files) = 0;
  // Imports a picture that is not a file; `name` is recorded as its original name.
  virtual void importPicture(std::string bytes, std::string name) = 0;
  // Drops everything that is remembered about photos of the save folder that were moved to the trash, by the
  // user or to keep the folder limit. All removals come through here.
  virtual void forget(std::span<const std::filesystem::path> files) = 0;
};

// The folders in use, which depend on the settings, the drives and the date.
class FoldersInUse {
public:
  virtual ~FoldersInUse() = default;
  // Where received files are saved, and how they are named.
  [[nodiscard]] virtual fennick::SaveDestination makeDestination() const = 0;
  // The folder that the gallery shows, or would show if it were on.
  [[nodiscard]] virtual std::filesystem::path galleryURL() const = 0;
};

// Commands of the panel, the windows and the menus.
class AppCommands : public virtual ProblemReports {
public:
  virtual void showSettingsAction() = 0;
  virtual void showHelpAction() = 0;
  // A second launch passed these arguments to this program. Opens the windows that they name, or the main
  // one.
  virtual void handleArguments(const std::vector<std::string> &arguments) = 0;
  // Records that the first-start windows are done; the next start opens the main window.
  virtual void finishOnboarding() = 0;
  // Saves files in `folder`, which exists, from now on. A failure becomes the model's error.
  virtual void chooseSaveFolder(const std::filesystem::path &folder) = 0;
  // Removes the error that is shown, since the user has read it.
  virtual void dismissError() = 0;
  // Checks again whether phones can reach the service, and what blocks them.
  virtual void runLocalNetworkCheck() = 0;
};

} // namespace quarrow
