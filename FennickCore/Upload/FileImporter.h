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

// Why a file was not brought in. Nothing of it is left in the save folder.
enum class ImportFault : std::uint8_t {
  unreadable, // gone, no permission, a link, a folder, or changed while it was read
  notMedia,   // neither photo nor video by its content
  noRoom,     // the disk would be full
  notSaved,   // the save folder's drive is unplugged, or it cannot be written; the log says why
  stopped,    // the user has cancelled the import
};

// Brings photos and videos of this computer into the save folder as copies, on the way of an upload: the same
// part file, the same look at the content, the same name, the same syncs. The limits for phones - size,
// number and folder - are not for what people bring in themselves. One thread at a time.
class FileImporter {
public:
  // Asked on the importing thread, anew for each file; `isStopped` also in between.
  struct Providers {
    std::function<SaveDestination()> destination;
    std::function<bool()> canSave;                      // whether the save folder's drive is there
    std::function<void(const UploadRecord &)> onUpload; // once per saved file
    std::function<bool()> isStopped = [] { return false; };
    PendingPhotos *pending = nullptr; // outlives the object; null: nothing follows an upload
  };

  // `files`, `incoming`, `clock` and `activity` outlive the importer.
  FileImporter(Providers providers, FileSystem &files, IncomingFolder &incoming, const Clock &clock,
               UploadActivity &activity);

  // Blocks until the copy is saved, its processing apart. The file itself stays as it is.
  [[nodiscard]] std::expected<void, ImportFault> importFile(const std::filesystem::path &file);
  // The same for a picture that is no file, such as one from the clipboard. `name` is what it is called.
  [[nodiscard]] std::expected<void, ImportFault> importBytes(std::span<const std::byte> bytes,
                                                             const std::string &name);

private:
  using Read = std::function<IOResult<std::span<const std::byte>>()>; // the next bytes; none at the end

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
