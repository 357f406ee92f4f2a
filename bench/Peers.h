#pragma once

#include "FennickCore/HTTP/HTTPServer.h"
#include "FennickCore/HTTP/RateLimiter.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Network/ListeningSocket.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Upload/UploadRouter.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace bench {

enum class Sync { yes, no };

// The system's file system, with syncing switched off to show what it costs.
class BenchFileSystem final : public fennick::FileSystem {
public:
  explicit BenchFileSystem(Sync sync) : sync_(sync) {}
  fennick::IOResult<std::unique_ptr<fennick::WritableFile>>
  createFile(const std::filesystem::path &file) override;
  fennick::IOResult<void> createDirectories(const std::filesystem::path &folder) override;
  fennick::IOResult<void> moveNoReplace(const std::filesystem::path &from,
                                        const std::filesystem::path &to) override;
  fennick::IOResult<void> replace(const std::filesystem::path &from,
                                  const std::filesystem::path &to) override;
  fennick::IOResult<void> link(const std::filesystem::path &from, const std::filesystem::path &to) override;
  fennick::IOResult<void> remove(const std::filesystem::path &file) override;
  fennick::IOResult<void> syncDirectory(const std::filesystem::path &folder) override;
  fennick::IOResult<std::vector<fennick::DirectoryEntry>> list(const std::filesystem::path &folder) override;
  fennick::IOResult<std::int64_t> availableBytes(const std::filesystem::path &folder) override;

private:
  const Sync sync_;
  fennick::SystemFileSystem system_;
};

// A clock that advances a minute at every reading, so that no benchmark is throttled.
class HastyClock final : public fennick::Clock {
public:
  [[nodiscard]] fennick::Instant now() const override { return system_.now(); }
  [[nodiscard]] fennick::Uptime uptime() const override;

private:
  fennick::SystemClock system_;
};

// The upload router with everything behind it, saving into one folder.
class Service {
public:
  struct Options {
    Sync sync = Sync::yes;
    fennick::NamingPolicy naming{};
    std::optional<std::int64_t> folderLimit{};
    std::optional<std::filesystem::path> gallery{}; // the folder that phones may look into
    fennick::Thumbnails *thumbnails = nullptr;      // outlive the service
  };
  Service(const std::filesystem::path &folder, const Options &options);

  [[nodiscard]] fennick::UploadRouter &router() { return router_; }
  [[nodiscard]] std::uint16_t start(); // serves on a free port
  static constexpr const char *kTarget = "/upload?k=benchmark";

private:
  BenchFileSystem files_;
  HastyClock hasty_;
  fennick::SystemClock clock_;
  fennick::UploadActivity activity_;
  fennick::IncomingFolder incoming_{files_};
  fennick::UploadOutcomes outcomes_;
  fennick::UploadRouter router_;
  fennick::RateLimiter limiter_;
  fennick::HTTPServer server_;
};

// The minimal cost of receiving: one thread per connection that reads 256 KiB at a time and writes them to a
// file.
class Floor {
public:
  Floor(std::filesystem::path folder, Sync sync);
  ~Floor();
  Floor(const Floor &) = delete;
  Floor &operator=(const Floor &) = delete;
  [[nodiscard]] std::uint16_t port() const { return listener_.port(); }

private:
  void serve(const fennick::FileDescriptor &socket, int number) const;

  std::filesystem::path folder_;
  const Sync sync_;
  fennick::ListeningSocket listener_;
  std::jthread thread_;
};

// nginx with its WebDAV module, bodies kept on the same file system as the folder. It also serves the files
// and lists them as JSON.
class Nginx {
public:
  // Serves "nginx/files" in `folder`. Returns null if it is not installed or does not start.
  [[nodiscard]] static std::unique_ptr<Nginx> start(const std::filesystem::path &folder);
  ~Nginx();
  Nginx(const Nginx &) = delete;
  Nginx &operator=(const Nginx &) = delete;
  [[nodiscard]] std::uint16_t port() const { return port_; }

private:
  Nginx(std::filesystem::path configuration, std::uint16_t port)
      : configuration_(std::move(configuration)), port_(port) {}
  std::filesystem::path configuration_;
  std::uint16_t port_;
};

} // namespace bench
