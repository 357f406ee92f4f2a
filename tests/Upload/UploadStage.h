#pragma once

#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Upload/UploadRouter.h"
#include "tests/Support/FakeClock.h"
#include "tests/Support/FakeDecoder.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fennick::test {

using Operation = FaultyFileSystem::Operation;

inline const std::string kJPEG = "\xFF\xD8\xFF\xE0 a photo of the harbour";
inline const std::string kTIFF = std::string("II*\0", 4) + "a scan or a raw file";

// The upload service with a save folder, a faulty disk and a fake clock. Requests and answers are text:
// `ask("GET /quota?k=wrong")` returns "reject 403 invalid key".
class UploadStage : public ::testing::Test {
protected:
  UploadStage() { files.setAvailableBytes(100'000'000'000); }

  HTTPRouteDecision decide(std::string_view request, std::string_view headers = "") {
    return router.route(HTTPRequestHead::parse(fmt::format("{} HTTP/1.1\r\n{}", request, headers)).value(),
                        remote);
  }
  std::string ask(std::string_view request, std::string_view headers = "") {
    const auto decision = decide(request, headers);
    if (const auto *respond = std::get_if<HTTPRespond>(&decision))
      return fmt::format("respond {}", textOf(respond->response));
    if (const auto *reject = std::get_if<HTTPReject>(&decision))
      return fmt::format("reject {}", textOf(reject->response));
    return fmt::format("receive {}", std::get<HTTPReceive>(decision).expectedBytes);
  }

  // Sends a file: `finish(admit(kJPEG.size()), kJPEG)`, or at once `upload(kJPEG)`.
  std::unique_ptr<HTTPBodySink> admit(std::size_t length, std::string_view headers = "") {
    auto decision = decide("POST /upload?k=secret", fmt::format("Content-Length: {}\r\n{}", length, headers));
    return std::move(std::get<HTTPReceive>(decision).sink);
  }
  static std::string finish(std::unique_ptr<HTTPBodySink> sink, std::string_view body) {
    if (sink->write(std::as_bytes(std::span(body))))
      return textOf(sink->finish());
    sink->abort();
    return "aborted";
  }
  std::string upload(std::string_view body, std::string_view headers = "") {
    return finish(admit(body.size(), headers), body);
  }

  // The files in the save folder, and the part files.
  [[nodiscard]] std::vector<std::string> photos() const {
    auto names = disk.names("photos");
    std::erase(names, ".fennick-incoming");
    return names;
  }
  [[nodiscard]] std::vector<std::string> parts() const { return disk.names("photos/.fennick-incoming"); }

  [[nodiscard]] std::vector<UploadRecord> reported() const {
    const Locked locked(lock_);
    return reported_;
  }

  static std::string textOf(const HTTPResponse &response) {
    return fmt::format("{} {}", response.status, response.body);
  }

  TemporaryFolder disk;
  FaultyFileSystem files;
  FakeClock clock;
  UploadActivity activity;
  std::string remote = "192.168.1.20";

  // The values of the providers.
  std::string key = "secret";
  std::string formerKey = "former";
  SaveDestination destination{.folder = disk.makeFolder("photos"),
                              .dateSubfolders = false,
                              .naming = PrefixSequenceNaming{},
                              .subfolder = {}};
  std::int64_t maxBytes = 1'000'000;
  std::optional<std::filesystem::path> gallery;
  UploadRouter::UploadPolicy policy;

  IncomingFolder incomingFolder{files};
  PendingPhotos pending{files};
  UploadOutcomes outcomes{disk / "state/uploads.jsonl"};
  TemporaryFolder cache;
  FakeDecoder decoder;
  Thumbnails thumbnails{files, cache.path(), decoder};
  UploadRouter router{{.key = [this] { return key; },
                       .destination = [this] { return destination; },
                       .maxBytes = [this] { return maxBytes; },
                       .onUpload =
                           [this](const UploadRecord &record) {
                             const Locked locked(lock_);
                             reported_.push_back(record);
                           },
                       .gallery = [this] { return gallery; },
                       .policy = [this] { return policy; },
                       .pending = &pending,
                       .outcomes = &outcomes,
                       .wasValidKey = [this](auto given) { return given == formerKey; }},
                      disk / "bundle",
                      files,
                      incomingFolder,
                      clock,
                      activity,
                      &thumbnails};

private:
  mutable Mutex lock_;
  std::vector<UploadRecord> reported_ GUARDED_BY(lock_);
};

} // namespace fennick::test
