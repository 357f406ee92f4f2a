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

// Whether `text` is an upload's identity: 128 random bits as 32 lower-case hexadecimal digits.
[[nodiscard]] bool isUploadID(std::string_view text);

// Remembers what became of the uploads that carry an identity, so that a phone whose connection broke can ask
// instead of guessing, and never sends a photo twice that the computer has. Saved uploads are also recorded
// in a file and known to the next run. Any thread; guarded by its own lock.
class UploadOutcomes {
public:
  struct Receiving {
    std::int64_t bytes = 0; // received so far
    bool operator==(const Receiving &) const = default;
  };
  struct Saved {
    std::string name; // the file's name, as it was answered
    bool operator==(const Saved &) const = default;
  };
  struct Rejected {
    std::int64_t status = 0;
    std::string text;
    bool operator==(const Rejected &) const = default;
  };
  // monostate: never heard of, forgotten, or broken off without an answer. The phone may send it.
  using Outcome = std::variant<std::monostate, Receiving, Saved, Rejected>;

  // Most finished uploads that are remembered; uploads under way come on top. Some 200 bytes each.
  static constexpr std::size_t kMost = 512;

  // Reads the uploads that earlier runs recorded in `file` and records there. An empty path: nothing outlasts
  // the object. A file that cannot be read or written is logged and costs no upload.
  explicit UploadOutcomes(std::filesystem::path file = {});

  // One attempt to upload. It ends with the answer to the phone; destroyed without one, the attempt was
  // broken off and leaves no outcome. An empty attempt records nothing. One thread at a time.
  class Attempt {
  public:
    Attempt() = default;
    Attempt(Attempt &&other) noexcept;
    Attempt &operator=(Attempt &&other) noexcept;
    ~Attempt();

    // `bytes` more of the body have arrived.
    void received(std::int64_t bytes);
    // The photo, complete in `partFile`, is about to be moved to `file`. If the program is killed before the
    // answer, the next run looks whether it was.
    void willAppear(const std::filesystem::path &partFile, const std::filesystem::path &file);
    // The answer that the phone will be sent. For a 200 the photo has its final name, which is the body.
    void answered(const HTTPResponse &response);

  private:
    friend class UploadOutcomes;
    Attempt(UploadOutcomes &owner, std::string id) : owner_(&owner), id_(std::move(id)) {}
    void end(Outcome outcome);

    UploadOutcomes *owner_ = nullptr;
    std::string id_;
  };

  // Begins an attempt; the object outlives it. Returns the present outcome instead if the upload is saved or
  // being received already.
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
  std::size_t lines_ GUARDED_BY(lock_) = 0; // in the file
};

} // namespace fennick
