#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Storage/PhotoItem.h"

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

// Operations of the photo wall on saved files; BatchRename.h and PhotoRotation.h contain the others. They
// never overwrite another photo, and at every moment each photo is complete under exactly one name. Any
// thread; two operations on the same file at once may fail.
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

} // namespace fennick::PhotoFileOps
