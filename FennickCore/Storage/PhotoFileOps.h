#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Storage/PhotoItem.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

// Operations of the photo wall on saved files. They never overwrite another photo, and at every moment each
// photo is complete under exactly one name. Any thread; two operations on the same file at once may fail.
namespace fennick::PhotoFileOps {

struct OpError {
  enum class Kind {
    nameTaken,     // `name` is taken; choose another
    notAnImage,    // not a picture that can be read
    writeFailed,   // the rotated picture could not be made; the file is as it was
    invalidName,   // choose another
    system,        // `cause` says why; every file has its old name
    partlyRenamed, // `cause` stopped a batch that could not be undone; `left` has the current name of each
                   // file
  };
  Kind kind = Kind::system;
  std::string name{};
  std::error_code cause{};
  std::vector<Renaming> left{};

  // Returns a message for the user, in Chinese.
  [[nodiscard]] std::string description() const;
};

template <typename T>
using Result = std::expected<T, OpError>;

// Renames `file` to `newName`, without white space at its ends, and keeps the extension. Returns the new
// path.
[[nodiscard]] Result<std::filesystem::path> rename(const std::filesystem::path &file,
                                                   std::string_view newName, FileSystem &files);

struct Numbering {
  std::string prefix;
  std::int64_t digits = 3; // at least; clamped to 1 through 18
  std::int64_t start = 1;  // used clamped to 0 through 10^15
};

// Returns the names that `batchRename` would give now, in the order of the selection, including unchanged
// ones.
[[nodiscard]] Result<std::vector<Renaming>> numberedNames(std::span<const std::filesystem::path> selection,
                                                          const Numbering &numbering, FileSystem &files);

// Called with the progress of a batch, from 0 to 1, on the working thread. Returning false stops it.
using Proceed = std::function<bool(double share)>;

// Renames every file within its folder; files may exchange names. Either all are renamed, or the error tells
// how they are named: `system` with operation_canceled if `proceed` stopped it and every file has its old
// name. A program that is killed meanwhile leaves files named UUID-oldname.
[[nodiscard]] Result<void> renameAll(std::span<const Renaming> renamings, FileSystem &files,
                                     const Proceed &proceed = {});

// Numbers the files in their order; each stays in its folder and keeps its extension. Numbers of files
// outside the selection are skipped. Fails like `renameAll`. Returns the new path of each file.
[[nodiscard]] Result<std::vector<std::filesystem::path>>
batchRename(std::span<const std::filesystem::path> selection, const Numbering &numbering, FileSystem &files,
            const Proceed &proceed = {});

enum class QuarterTurn { clockwise, anticlockwise };

// Rotates the picture by changing only its orientation. The file is replaced atomically, keeps its
// permissions and becomes one second newer, so that it keeps its place among others while caches that compare
// times read it again.
[[nodiscard]] Result<void> rotate(const std::filesystem::path &file, QuarterTurn turn,
                                  PictureDecoder &decoder, FileSystem &files);

} // namespace fennick::PhotoFileOps
