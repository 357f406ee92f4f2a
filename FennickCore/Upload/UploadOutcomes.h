#pragma once

#include "FennickCore/HTTP/HTTPResponse.h"
#include "FennickCore/Platform/Files/AppendedFile.h"
#include "FennickCore/Platform/Threads/Mutex.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>

namespace fennick {

// Returns whether `text` is the identity of an upload: 128 random bits as 32 lower-case hexadecimal digits.
[[nodiscard]] bool isUploadID(std::string_view text);

// Remembers the outcome of uploads with an identity, so that a phone whose connection broke can ask for it
// and never sends a photo again that the computer has. Saved uploads are also recorded in a file for the next
// run. Any thread; guarded by its own lock.
class UploadOutcomes {
public:
  struct Receiving {
    std::int64_t bytes = 0; // received so far
    bool operator==(const Receiving &) const = default;
  };
  struct Saved {
    std::string name; // the file name in the response
    bool operator==(const Saved &) const = default;
  };
  struct Rejected {
    std::int64_t status = 0;
    std::string text;
    bool operator==(const Rejected &) const = default;
  };
  // monostate: unknown, forgotten, or interrupted without a response. The phone may send it.
  using Outcome = std::variant<std::monostate, Receiving, Saved, Rejected>;

  // Most finished uploads that are remembered, besides those in progress. About 200 bytes each.
  static constexpr std::size_t kMost = 512;

  // Reads the uploads that earlier runs recorded in `file` and records new ones there. With an empty path
  // nothing is recorded. An unreadable or unwritable file is logged and fails no upload.
  explicit UploadOutcomes(std::filesystem::path file = {});

  // One attempt to upload. It ends with the response to the phone; an attempt that is destroyed without one
  // was interrupted and leaves no outcome. An empty attempt records nothing. One thread at a time.
  class Attempt {
  public:
    Attempt() = default;
    Attempt(Attempt &&other) noexcept;
    Attempt &operator=(Attempt &&other) noexcept;
    ~Attempt();

    // Adds `bytes` received bytes of the body.
    void received(std::int64_t bytes);
    // Records that the photo, complete in `partFile`, is about to be moved to `file`. If the program is
    // killed before the response, the next run checks whether it was moved.
    void willAppear(const std::filesystem::path &partFile, const std::filesystem::path &file);
    // Records the response to the phone. For a 200 the photo has its final name, which is the body.
    void answered(const HTTPResponse &response);

  private:
    friend class UploadOutcomes;
    Attempt(UploadOutcomes &owner, std::string id) : owner_(&owner), id_(std::move(id)) {}
    void end(Outcome outcome);

    UploadOutcomes *owner_ = nullptr;
    std::string id_;
  };

  // Begins an attempt, which the object outlives. Returns the current outcome instead if the upload is saved
  // or in progress.
  [[nodiscard]] std::expected<Attempt, Outcome> begin(const std::string &id);
  [[nodiscard]] Outcome at(const std::string &id) const;

private:
  void load();
  void finish(const std::string &id, Outcome outcome);
  void remember(const std::string &id, Outcome outcome) REQUIRES(lock_);
  void record(const std::string &line) REQUIRES(lock_);
  void rewrite() REQUIRES(lock_);
  [[nodiscard]] IOResult<void> append(const std::string &line) REQUIRES(lock_);

  const std::filesystem::path file_;
  mutable Mutex lock_;
  std::unordered_map<std::string, Outcome> outcomes_ GUARDED_BY(lock_);
  std::deque<std::string> finished_ GUARDED_BY(lock_); // the oldest first
  // The lines of uploads that are being moved to their final names.
  std::unordered_map<std::string, std::string> appearing_ GUARDED_BY(lock_);
  std::optional<AppendedFile> record_ GUARDED_BY(lock_);
  std::size_t lines_ GUARDED_BY(lock_) = 0; // lines in the file
};

} // namespace fennick
