#pragma once

#include "FennickCore/Imaging/ImagePipeline.h"
#include "FennickCore/Imaging/Originals.h"
#include "FennickCore/Platform/Files/FileStatus.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace fennick::ImagePipeline {

// Replaces a received file by its new encoding. If the program ends at any moment, the photo is complete
// under its own name or its new one. On failure the photo is unchanged, and what was written is removed with
// the object. The arguments are borrowed for the lifetime of the object. One thread.
class PictureCommit {
public:
  PictureCommit(const std::filesystem::path &source, const FileStatus &status, OriginalFate fate,
                const Services &services);
  ~PictureCommit();
  PictureCommit(const PictureCommit &) = delete;
  PictureCommit &operator=(const PictureCommit &) = delete;

  struct Placed {
    std::filesystem::path file; // the photo's new path
    Original original;
  };

  // Writes the encoding to the work folder and syncs it, with the modification time, permissions and user
  // attributes of the received file.
  [[nodiscard]] IOResult<void> write(std::string_view bytes);
  // Moves the encoding to the received file's name with `extension`, or to a similar free one, and applies
  // its fate to the received file. If the name stays, a file for the trash is kept in "originals" instead: it
  // must be safe before it is replaced, and the trash takes files only under their own names.
  [[nodiscard]] IOResult<Placed> place(std::string_view extension);

private:
  [[nodiscard]] IOResult<Placed> replaceSource();
  [[nodiscard]] IOResult<Placed> placeBeside(const std::filesystem::path &name);
  [[nodiscard]] IOResult<void> announce(const std::filesystem::path &target);
  void takeBack(const std::filesystem::path &target);

  const std::filesystem::path &source_;
  const FileStatus &status_;
  const OriginalFate fate_;
  const Services &services_;
  FileSystem &files_;
  const std::filesystem::path output_;
  bool isWritten_ = false;
  bool isAnnounced_ = false; // the journal contains a record that must be removed after a failure
};

} // namespace fennick::ImagePipeline
