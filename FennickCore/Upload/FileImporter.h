#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Storage/NameAllocator.h"
#include "FennickCore/Storage/SaveDestination.h"
#include "FennickCore/Upload/IncomingFolder.h"
#include "FennickCore/Upload/UploadActivity.h"
#include "FennickCore/Upload/UploadSink.h"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <span>
#include <string>

namespace fennick {

// Why a file was not imported. Nothing of it remains in the save folder.
enum class ImportFault : std::uint8_t {
  unreadable, // missing, no permission, a link, a folder, or changed while it was read
  notMedia,   // neither photo nor video by its content
  noRoom,     // the disk would be full
  notSaved,   // the save folder's drive is unplugged, or it cannot be written; the log says why
  stopped,    // the user has cancelled the import
};

// Copies photos and videos of this computer into the save folder in the same way as uploads: with a part
// file, a check of the content, a name and the same syncs. The limits for phones (size, number and folder) do
// not apply. One thread at a time.
class FileImporter {
public:
  // Called on the importing thread for each file; `isStopped` also in between.
  struct Providers {
    std::function<SaveDestination()> destination;
    std::function<bool()> canSave;                      // whether the save folder's drive is there
    std::function<void(const UploadRecord &)> onUpload; // once per saved file
    std::function<bool()> isStopped = [] { return false; };
    PendingPhotos *pending = nullptr; // outlives the object; null: photos are not tracked after the upload
  };

  // `files`, `incoming`, `clock` and `activity` outlive the importer.
  FileImporter(Providers providers, FileSystem &files, IncomingFolder &incoming, const Clock &clock,
               UploadActivity &activity);

  // Copies the file and blocks until the copy is saved, but not until it is processed. The source is
  // unchanged.
  [[nodiscard]] std::expected<void, ImportFault> importFile(const std::filesystem::path &file);
  // Imports a picture that is not a file, such as one from the clipboard. `name` is recorded as its original
  // name.
  [[nodiscard]] std::expected<void, ImportFault> importBytes(std::span<const std::byte> bytes,
                                                             const std::string &name);

private:
  using Read =
      std::function<IOResult<std::span<const std::byte>>()>; // returns the next bytes; empty at the end

  [[nodiscard]] std::expected<void, ImportFault> bringIn(std::int64_t size, const std::string &name,
                                                         const Read &read);
  [[nodiscard]] std::expected<void, ImportFault> fill(UploadSink &sink, std::int64_t size,
                                                      const Read &read) const;

  const Providers providers_;
  FileSystem &files_;
  IncomingFolder &incoming_;
  const Clock &clock_;
  UploadActivity &activity_;
  NameAllocator allocator_;
};

} // namespace fennick
