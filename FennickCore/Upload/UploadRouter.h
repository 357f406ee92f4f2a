#pragma once

#include "FennickCore/HTTP/HTTPRequestHandler.h"
#include "FennickCore/HTTP/SlidingWindowLimiter.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Storage/NameAllocator.h"
#include "FennickCore/Storage/SaveDestination.h"
#include "FennickCore/Upload/GalleryThumbnails.h"
#include "FennickCore/Upload/IncomingFolder.h"
#include "FennickCore/Upload/KeyCheck.h"
#include "FennickCore/Upload/PhonePage.h"
#include "FennickCore/Upload/UploadActivity.h"
#include "FennickCore/Upload/UploadOutcomes.h"
#include "FennickCore/Upload/UploadSink.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace fennick {

// The phone protocol: page, health check, status query, upload and gallery. Every setting comes from a
// provider that is called for each request, so that a change takes effect on the next one.
//
// Shared by all connections; `route` and the providers are called on their threads at the same time.
class UploadRouter final : public HTTPRequestHandler {
public:
  // Which uploads the folder still accepts.
  struct UploadPolicy {
    std::optional<std::int64_t> folderLimit; // most photos and videos in the target folder; nullopt: no limit
    bool autoPrune = true;                   // a full folder is pruned after saving instead of refused
    bool operator==(const UploadPolicy &) const = default;
  };

  struct Providers {
    std::function<std::string()> key; // the current access key
    std::function<SaveDestination()> destination;
    std::function<std::int64_t()> maxBytes;             // most bytes of one upload
    std::function<void(const UploadRecord &)> onUpload; // once per saved upload, on its connection's thread
    // The folder whose photos phones may see, or nullopt while the gallery is off.
    std::function<std::optional<std::filesystem::path>()> gallery = [] { return std::nullopt; };
    std::function<UploadPolicy()> policy;
    std::function<bool()> canSave = [] { return true; }; // whether the save folder's drive is mounted
    PendingPhotos *pending = nullptr; // outlives the object; null: photos are not tracked after the upload
    UploadOutcomes *outcomes;         // outlives the object
    // Whether a key was the access key earlier in this run.
    std::function<bool(std::string_view)> wasValidKey = [](std::string_view) { return false; };
  };

  // `files`, `incoming`, `clock`, `activity` and `thumbnails` outlive the router. If `thumbnails` is null the
  // gallery has none.
  UploadRouter(Providers providers, std::filesystem::path bundle, FileSystem &files, IncomingFolder &incoming,
               const Clock &clock, UploadActivity &activity, Thumbnails *thumbnails = nullptr);

  HTTPRouteDecision route(const HTTPRequestHead &head, const std::string &remote) override;

private:
  [[nodiscard]] HTTPRouteDecision wrongKey(const HTTPRequestHead &head, const std::string &remote,
                                           std::string_view text);
  [[nodiscard]] HTTPRouteDecision phonePage(const HTTPRequestHead &head) const;
  [[nodiscard]] HTTPRouteDecision status(const HTTPRequestHead &head);
  [[nodiscard]] HTTPRouteDecision gallery(const HTTPRequestHead &head);
  [[nodiscard]] HTTPRouteDecision upload(const HTTPRequestHead &head, const std::string &remote);
  [[nodiscard]] HTTPRouteDecision admit(const HTTPRequestHead &head, const std::string &remote,
                                        UploadOutcomes::Attempt attempt);
  [[nodiscard]] static HTTPRouteDecision answerAgain(const UploadOutcomes::Outcome &outcome);
  [[nodiscard]] std::optional<HTTPRouteDecision> refusal(const HTTPRequestHead &head,
                                                         const std::string &remote);
  [[nodiscard]] HTTPRouteDecision receive(const HTTPRequestHead &head, const std::string &remote,
                                          UploadOutcomes::Attempt attempt);
  [[nodiscard]] std::optional<std::int64_t> availableBytes();

  const Providers providers_;
  KeyCheck keyCheck_;
  const PhonePage page_;
  FileSystem &files_;
  IncomingFolder &incoming_;
  const Clock &clock_;
  UploadActivity &activity_;
  NameAllocator allocator_;
  SlidingWindowLimiter uploadThrottle_;
  GalleryThumbnails thumbnails_;
};

} // namespace fennick
