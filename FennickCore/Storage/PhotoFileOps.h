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

// What the photo wall does to saved files. Nothing here ever overwrites another photo, and at every moment
// each photo stands whole under one name. Any thread; two operations on the same file at once may fail.
namespace fennick::PhotoFileOps {

struct OpError {
  enum class Kind {
    nameTaken,     // `name` is taken; choose another
    notAnImage,    // not a picture that can be read
    writeFailed,   // the rotated picture could not be made; the file is as it was
    invalidName,   // choose another
    system,        // `cause` says why; every file has its old name
    partlyRenamed, // `cause` stopped a batch that could not be undone; `left` says which name each file has
  };
  Kind kind = Kind::system;
  std::string name{};
  std::error_code cause{};
  std::vector<Renaming> left{};

  // For people, in Chinese.
  [[nodiscard]] std::string description() const;
};

template <typename T>
using Result = std::expected<T, OpError>;

// Gives `file` the name `newName`, white space at its ends dropped, and the extension it has. Returns where
// it is now.
[[nodiscard]] Result<std::filesystem::path> rename(const std::filesystem::path &file,
                                                   std::string_view newName, FileSystem &files);

struct Numbering {
  std::string prefix;
  std::int64_t digits = 3; // at least; used clamped to 1 through 18
  std::int64_t start = 1;  // used clamped to 0 through 10^15
};

// The names that `batchRename` would give right now, in the order of the selection; those that stay as they
// are among them.
[[nodiscard]] Result<std::vector<Renaming>> numberedNames(std::span<const std::filesystem::path> selection,
                                                          const Numbering &numbering, FileSystem &files);

// Told how far a batch has come, from 0 to 1, on the thread that works on it; false stops it.
using Proceed = std::function<bool(double share)>;

// Gives every file its new name in the folder that it is in; names among them may be exchanged. All are
// renamed, or the error says how they are named: `system` with operation_canceled when `proceed` stopped it,
// and every file has its old name. A program that is ended in the middle leaves files named UUID-oldname.
[[nodiscard]] Result<void> renameAll(std::span<const Renaming> renamings, FileSystem &files,
                                     const Proceed &proceed = {});

// Names the files by rising numbers, in their order; each stays in its folder and keeps its extension.
// Numbers that files outside the selection have are passed over. Fails like `renameAll`. Returns where each
// file is now.
[[nodiscard]] Result<std::vector<std::filesystem::path>>
batchRename(std::span<const std::filesystem::path> selection, const Numbering &numbering, FileSystem &files,
            const Proceed &proceed = {});

enum class QuarterTurn { clockwise, anticlockwise };

// Turns the picture by changing nothing but its orientation; its pixels stay. The file is replaced in one
// step, keeps its permissions and becomes one second newer: it stays where it is among others, while whoever
// remembers it by its time looks again.
[[nodiscard]] Result<void> rotate(const std::filesystem::path &file, QuarterTurn turn,
                                  PictureDecoder &decoder, FileSystem &files);

} // namespace fennick::PhotoFileOps
