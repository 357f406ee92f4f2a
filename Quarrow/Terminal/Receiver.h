#pragma once

#include "FennickCore/HTTP/HTTPServer.h"
#include "FennickCore/HTTP/RateLimiter.h"
#include "FennickCore/Imaging/ImagePipeline.h"
#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Clock.h"
#include "FennickCore/Platform/FileSystem.h"
#include "FennickCore/Platform/MainQueue.h"
#include "FennickCore/Platform/SerialQueue.h"
#include "FennickCore/Platform/Trash.h"
#include "FennickCore/Settings/AppSettings.h"
#include "FennickCore/Upload/UploadRouter.h"
#include "Quarrow/App/RouterConfig.h"
#include "Quarrow/Terminal/Report.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace quarrow {

// The receiving service of the terminal program: server, router, processing and what they are configured
// with, reported to one Report. Main thread, except what other threads post to the main queue. Everything
// borrowed outlives it.
class Receiver {
public:
  struct Setup {
    fennick::AppSettings settings; // with the command line's overrides
    std::string accessKey;
    std::optional<std::filesystem::path> folder; // in place of the settings' save folder
    std::filesystem::path cacheDirectory;        // for thumbnails
  };
  struct Services {
    fennick::MainQueue &mainQueue;
    fennick::FileSystem &files;
    const fennick::Clock &clock;
    fennick::PictureDecoder &decoder;
    fennick::Trash &trash;
  };

  Receiver(Setup setup, Report &report, const Services &services);

  // Prepares the save folder and starts the server. False when the server cannot start; the report has the
  // reason. A save folder that cannot be made is reported too, but does not keep the server from starting.
  [[nodiscard]] bool start();
  // Ends the server; uploads under way are given up and their part files removed. Photos that still wait are
  // processed, unless the decoder was stopped before, and reported.
  void stop();

private:
  void applySaveFolder();
  void updateRouterConfig();
  void reportListening(std::uint16_t port);
  void handleUpload(const fennick::UploadRecord &record);
  void finishUpload(const fennick::UploadRecord &record, const fennick::ProcessResult &result);
  void pruneIfNeeded();
  void beginProgress();
  void reportProgress();
  [[nodiscard]] fennick::UploadRouter::Providers providers();

  Setup setup_;
  Report &report_;
  fennick::MainQueue &mainQueue_;
  fennick::FileSystem &files_;
  const fennick::Clock &clock_;
  fennick::PictureDecoder &decoder_;
  fennick::Trash &trash_;

  std::filesystem::path saveFolder_;
  RouterConfig routerConfig_;
  fennick::UploadActivity activity_;
  fennick::UploadRouter router_;
  fennick::RateLimiter rateLimiter_;
  std::unique_ptr<fennick::SerialQueue> processingQueue_ =
      std::make_unique<fennick::SerialQueue>("fennick.imaging");
  fennick::HTTPServer server_; // before the queue it posts to

  bool progressRuns_ = false;  // a report is shown or is to come
  fennick::Uptime progressAt_; // when progress was last shown
  std::int64_t progressBytes_ = 0;
  double bytesPerSecond_ = 0;
};

} // namespace quarrow
