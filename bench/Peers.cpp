#include "bench/Peers.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <fmt/os.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <fstream>
#include <list>
#include <vector>

namespace bench {

namespace fs = std::filesystem;
using fennick::IOResult;

namespace {

// Writes without the final sync and without starting writeback early.
class UnsyncedFile final : public fennick::WritableFile {
public:
  explicit UnsyncedFile(fennick::FileDescriptor file) : file_(std::move(file)) {}
  IOResult<void> write(std::span<const std::byte> bytes) override {
    if (::write(file_.get(), bytes.data(), bytes.size()) != std::ssize(bytes))
      return std::unexpected(std::make_error_code(std::errc::io_error));
    return {};
  }
  IOResult<void> sync() override { return {}; }
  IOResult<void> close() override {
    file_.reset();
    return {};
  }

private:
  fennick::FileDescriptor file_;
};

fennick::UploadRouter::Providers providers(const fs::path &folder, const Service::Options &options,
                                           fennick::UploadOutcomes &outcomes) {
  return {.key = [] { return "benchmark"; },
          .destination =
              [=] {
                return fennick::SaveDestination{
                    .folder = folder, .dateSubfolders = false, .naming = options.naming, .subfolder = {}};
              },
          .maxBytes = [] { return std::int64_t{1} << 40; },
          .onUpload = [](const auto &) {},
          .gallery = [=] { return options.gallery; },
          .policy =
              [=] {
                return fennick::UploadRouter::UploadPolicy{.folderLimit = options.folderLimit,
                                                           .autoPrune = false};
              },
          .outcomes = &outcomes};
}

fennick::ListeningSocket listenAnywhere() {
  auto listener = fennick::ListeningSocket::open(0);
  if (!listener) {
    fmt::print(stderr, "bench: {}\n", listener.error().message());
    std::exit(EXIT_FAILURE);
  }
  return std::move(*listener);
}

} // namespace

IOResult<std::unique_ptr<fennick::WritableFile>> BenchFileSystem::createFile(const fs::path &file) {
  if (sync_ == Sync::yes)
    return system_.createFile(file);
  return std::make_unique<UnsyncedFile>(
      fennick::FileDescriptor(::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666)));
}
IOResult<void> BenchFileSystem::createDirectories(const fs::path &folder) {
  return system_.createDirectories(folder);
}
IOResult<void> BenchFileSystem::moveNoReplace(const fs::path &from, const fs::path &to) {
  return system_.moveNoReplace(from, to);
}
IOResult<void> BenchFileSystem::replace(const fs::path &from, const fs::path &to) {
  return system_.replace(from, to);
}
IOResult<void> BenchFileSystem::link(const fs::path &from, const fs::path &to) {
  return system_.link(from, to);
}
IOResult<void> BenchFileSystem::remove(const fs::path &file) { return system_.remove(file); }
IOResult<void> BenchFileSystem::syncDirectory(const fs::path &folder) {
  return sync_ == Sync::yes ? system_.syncDirectory(folder) : IOResult<void>();
}
IOResult<std::vector<fennick::DirectoryEntry>> BenchFileSystem::list(const fs::path &folder) {
  return system_.list(folder);
}
IOResult<std::int64_t> BenchFileSystem::availableBytes(const fs::path &folder) {
  return system_.availableBytes(folder);
}

fennick::Uptime HastyClock::uptime() const {
  static std::atomic<std::int64_t> minutes = 0;
  return fennick::Uptime(std::chrono::minutes(++minutes));
}

Service::Service(const fs::path &folder, const Options &options)
    : files_(options.sync), router_(providers(folder, options, outcomes_), folder, files_, incoming_, hasty_,
                                    activity_, options.thumbnails),
      limiter_(fennick::kServiceBans), server_(router_, fennick::kServiceLimits, limiter_, clock_) {}

std::uint16_t Service::start() { return server_.start(0, 1).value(); }

Floor::Floor(fs::path folder, Sync sync)
    : folder_(std::move(folder)), sync_(sync), listener_(listenAnywhere()), thread_([this] {
        int number = 0;
        std::vector<std::jthread> connections;
        while (auto accepted = listener_.accept())
          connections.emplace_back(
              [this, socket = std::move(accepted->socket), which = ++number] { serve(socket, which); });
      }) {}

Floor::~Floor() { listener_.wake(); }

void Floor::serve(const fennick::FileDescriptor &socket, int number) const {
  constexpr std::size_t kChunk = 262144;
  const auto buffer = std::make_unique_for_overwrite<char[]>(kChunk);
  std::string head;
  while (head.find("\r\n\r\n") == std::string::npos) {
    const ssize_t count = ::recv(socket.get(), buffer.get(), 4096, 0);
    if (count <= 0)
      return;
    head.append(buffer.get(), static_cast<std::size_t>(count));
  }
  const auto length = head.find("Content-Length: ") + 16;
  std::int64_t remaining = std::stoll(head.substr(length));
  const std::string first = head.substr(head.find("\r\n\r\n") + 4);
  const fs::path file = folder_ / fmt::format("floor-{}", number);
  const fennick::FileDescriptor out(::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  [[maybe_unused]] ssize_t ignored = ::write(out.get(), first.data(), first.size());
  remaining -= std::ssize(first);
  while (remaining > 0) {
    const ssize_t count = ::recv(socket.get(), buffer.get(), kChunk, 0);
    if (count <= 0)
      return;
    ignored = ::write(out.get(), buffer.get(), static_cast<std::size_t>(count));
    remaining -= count;
  }
  if (sync_ == Sync::yes)
    ::fsync(out.get());
  constexpr std::string_view kAnswer = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
  ignored = ::send(socket.get(), kAnswer.data(), kAnswer.size(), MSG_NOSIGNAL);
}

std::unique_ptr<Nginx> Nginx::start(const fs::path &folder) {
  const std::uint16_t port = listenAnywhere().port(); // free a moment before
  const fs::path base = fs::absolute(folder) / "nginx";
  fs::create_directories(base / "files");
  const fs::path configuration = base / "nginx.conf";
  std::ofstream(configuration) << fmt::format(
      "pid {0}/pid; error_log {0}/error.log; worker_processes 2; user root;\n"
      "events {{ worker_connections 256; }}\n"
      "http {{ access_log off; sendfile on; tcp_nopush on;\n"
      "  client_max_body_size 0; client_body_temp_path {0}/temp;\n"
      "  client_body_buffer_size 256k;\n"
      "  server {{ listen 127.0.0.1:{1}; root {0}/files;\n"
      "    location / {{ dav_methods PUT; autoindex on; autoindex_format json; }} }} }}\n",
      base.string(), port);
  const std::string command =
      fmt::format("nginx -e {}/error.log -c {} 2>/dev/null", base.string(), configuration.string());
  if (std::system(command.c_str()) != 0)
    return nullptr;
  return std::unique_ptr<Nginx>(new Nginx(configuration, port));
}

Nginx::~Nginx() {
  const std::string command =
      fmt::format("nginx -e /dev/null -c {} -s stop 2>/dev/null", configuration_.string());
  [[maybe_unused]] const int ignored = std::system(command.c_str());
}

} // namespace bench
