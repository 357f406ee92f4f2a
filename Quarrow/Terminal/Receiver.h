#pragma once

#include "FennickCore/HTTP/HTTPServer.h"
#include "FennickCore/HTTP/RateLimiter.h"
#include "FennickCore/Platform/Clock.h"
#include "FennickCore/Platform/FileSystem.h"
#include "FennickCore/Platform/MainQueue.h"
#include "FennickCore/Settings/AppSettings.h"
#include "FennickCore/Upload/UploadRouter.h"
#include "Quarrow/App/RouterConfig.h"
#include "Quarrow/Terminal/Report.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quarrow {

// The receiving service of the terminal program: server, router and what they are configured with, reported
// to one Report. Main thread, except what the server's threads post to the main queue. Everything borrowed
// outlives it.
class Receiver {
public:
  struct Setup {
    fennick::AppSettings settings; // with the command line's overrides
    std::string accessKey;
    std::optional<std::filesystem::path> folder; // in place of the settings' save folder
  };

  Receiver(Setup setup, Report &report, fennick::MainQueue &mainQueue, fennick::FileSystem &files,
           const fennick::Clock &clock);

  // Prepares the save folder and starts the server. False when the server cannot start; the report has the
  // reason. A save folder that cannot be made is reported too, but does not keep the server from starting.
  [[nodiscard]] bool start();
  // Ends the server; uploads under way are given up and their part files removed.
  void stop();

private:
  void applySaveFolder();
  void updateRouterConfig();
  void reportListening(std::uint16_t port);
  void handleUpload(const fennick::UploadRecord &record);
  void beginProgress();
  void reportProgress();
  [[nodiscard]] fennick::UploadRouter::Providers providers();

  Setup setup_;
  Report &report_;
  fennick::MainQueue &mainQueue_;
  fennick::FileSystem &files_;
  const fennick::Clock &clock_;

  std::filesystem::path saveFolder_;
  RouterConfig routerConfig_;
  fennick::UploadActivity activity_;
  fennick::UploadRouter router_;
  fennick::RateLimiter rateLimiter_;
  fennick::HTTPServer server_;

  bool progressRuns_ = false;  // a report is shown or is to come
  fennick::Uptime progressAt_; // when progress was last shown
  std::int64_t progressBytes_ = 0;
  double bytesPerSecond_ = 0;
};

} // namespace quarrow
