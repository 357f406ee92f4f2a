#include "FennickCore/Platform/Processes/InstanceGuard.h"

#include "FennickCore/Platform/Files/FolderEntries.h"
#include "FennickCore/Platform/System/SystemCalls.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace fennick {

namespace fs = std::filesystem;

namespace {

constexpr mode_t kPrivateDirectory = 0700;
constexpr mode_t kPrivateFile = 0600;

IOResult<FileDescriptor> openPrivateDirectory(const fs::path &directory) {
  std::error_code unknown;
  const fs::path folder = fs::absolute(directory / "", unknown).parent_path(); // without a slash at its end
  if (unknown)
    return std::unexpected(unknown);
  if (auto parent = SystemFileSystem().createDirectories(folder.parent_path()); !parent)
    return std::unexpected(parent.error());
  if (::mkdir(folder.c_str(), kPrivateDirectory) != 0 && errno != EEXIST)
    return lastFailure();
  return openDirectory(folder);
}

// Opens and locks a file that is never deleted. Fails with EWOULDBLOCK if `operation` does not wait and
// another program holds the lock.
IOResult<FileDescriptor> lockFile(int directory, const std::string &name, int operation) {
  FileDescriptor fd(
      ::openat(directory, name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kPrivateFile));
  if (!fd.isOpen() || retried([&] { return ::flock(fd.get(), operation); }) != 0)
    return lastFailure();
  return fd;
}

// Held while a program takes the instance lock and begins to listen, so that whoever finds the instance lock
// taken also finds the socket.
IOResult<FileDescriptor> lockStart(int directory, std::string_view name) {
  return lockFile(directory, fmt::format("{}.starting", name), LOCK_EX);
}

std::string socketNameOf(std::string_view name) { return fmt::format("{}.socket", name); }

// Returns the address of a socket in an open directory. The path through /proc keeps it below the limit of
// 107 bytes, however long the directory's own path is.
IOResult<sockaddr_un> addressIn(int directory, std::string_view socketName) {
  const std::string path = fmt::format("/proc/self/fd/{}/{}", directory, socketName);
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  if (path.size() >= sizeof address.sun_path)
    return failure(ENAMETOOLONG);
  std::ranges::copy(path, std::begin(address.sun_path));
  return address;
}

const sockaddr *raw(const sockaddr_un &address) { return reinterpret_cast<const sockaddr *>(&address); }

IOResult<FileDescriptor> makeSocket() {
  FileDescriptor fd(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!fd.isOpen())
    return lastFailure();
  return fd;
}

// The caller holds the lock, so a socket with this name was left by a program that died.
IOResult<FileDescriptor> listenIn(int directory, const std::string &socketName) {
  const auto address = addressIn(directory, socketName);
  if (!address)
    return std::unexpected(address.error());
  auto fd = makeSocket();
  if (!fd)
    return fd;
  if (::unlinkat(directory, socketName.c_str(), 0) != 0 && errno != ENOENT)
    return lastFailure();
  const int on = 1;
  // The file takes over the mode that is set first, so other users can never send to it.
  if (::setsockopt(fd->get(), SOL_SOCKET, SO_PASSCRED, &on, sizeof on) != 0 ||
      ::fchmod(fd->get(), kPrivateFile) != 0 || ::bind(fd->get(), raw(*address), sizeof *address) != 0)
    return lastFailure();
  return fd;
}

// Refuses a running instance of another user.
IOResult<void> requireOurs(int directory, const std::string &socketName) {
  struct stat status{};
  if (::fstatat(directory, socketName.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
    return lastFailure();
  return status.st_uid == ::getuid() ? IOResult<void>() : IOResult<void>(failure(EACCES));
}

// Space for the sender's credentials only; the system closes descriptors that a sender attaches.
struct Control {
  alignas(cmsghdr) std::array<std::byte, CMSG_SPACE(sizeof(ucred))> bytes{};
};

bool isFromThisUser(msghdr &message) {
  const cmsghdr *header = CMSG_FIRSTHDR(&message);
  if (header == nullptr || header->cmsg_level != SOL_SOCKET || header->cmsg_type != SCM_CREDENTIALS)
    return false;
  ucred sender{};
  std::memcpy(&sender, CMSG_DATA(header), sizeof sender);
  return sender.uid == ::getuid();
}

std::optional<InstanceGuard::Arguments> parsed(std::string_view text) {
  const auto list = nlohmann::json::parse(text, nullptr, false);
  if (!list.is_array() || !std::ranges::all_of(list, [](const auto &item) { return item.is_string(); }))
    return std::nullopt;
  return list.get<InstanceGuard::Arguments>();
}

std::optional<std::string> encoded(const InstanceGuard::Arguments &arguments) {
  try {
    return nlohmann::json(arguments).dump();
  } catch (const nlohmann::json::exception &) {
    return std::nullopt; // not UTF-8
  }
}

} // namespace

IOResult<std::optional<InstanceGuard>> InstanceGuard::claim(const fs::path &directory,
                                                            std::string_view name) {
  auto folder = openPrivateDirectory(directory);
  if (!folder)
    return std::unexpected(folder.error());
  const auto starting = lockStart(folder->get(), name);
  if (!starting)
    return std::unexpected(starting.error());
  auto lock = lockFile(folder->get(), fmt::format("{}.lock", name), LOCK_EX | LOCK_NB);
  if (!lock && lock.error() == std::errc::operation_would_block)
    return std::nullopt;
  if (!lock)
    return std::unexpected(lock.error());
  std::string socketName = socketNameOf(name);
  auto socket = listenIn(folder->get(), socketName);
  if (!socket)
    return std::unexpected(socket.error());
  return InstanceGuard(std::move(*folder), std::move(*lock), std::move(*socket), std::move(socketName));
}

IOResult<void> InstanceGuard::handOver(const fs::path &directory, std::string_view name,
                                       const Arguments &arguments) {
  const auto text = encoded(arguments);
  if (!text)
    return failure(EILSEQ);
  if (text->size() > kLargestHandOver)
    return failure(EMSGSIZE);
  const auto folder = openDirectory(directory);
  if (!folder)
    return std::unexpected(folder.error());
  const std::string socketName = socketNameOf(name);
  if (auto ours = requireOurs(folder->get(), socketName); !ours)
    return ours;
  const auto address = addressIn(folder->get(), socketName);
  if (!address)
    return std::unexpected(address.error());
  const auto fd = makeSocket();
  if (!fd)
    return std::unexpected(fd.error());
  if (retried([&] {
        return ::sendto(fd->get(), text->data(), text->size(), MSG_NOSIGNAL, raw(*address), sizeof *address);
      }) < 0)
    return lastFailure();
  return {};
}

InstanceGuard::InstanceGuard(FileDescriptor directory, FileDescriptor lock, FileDescriptor socket,
                             std::string socketName)
    : directory_(std::move(directory)), lock_(std::move(lock)), socket_(std::move(socket)),
      socketName_(std::move(socketName)) {}

InstanceGuard::~InstanceGuard() {
  if (socket_.isOpen())
    ::unlinkat(directory_.get(), socketName_.c_str(), 0);
}

std::vector<InstanceGuard::Arguments> InstanceGuard::receive() const {
  std::vector<Arguments> received;
  std::string text(kLargestHandOver, '\0');
  while (true) {
    iovec piece{.iov_base = text.data(), .iov_len = text.size()};
    Control control;
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_control = control.bytes.data();
    message.msg_controllen = control.bytes.size();
    const ssize_t count = retried([&] { return ::recvmsg(socket_.get(), &message, MSG_CMSG_CLOEXEC); });
    if (count < 0)
      return received;
    if ((message.msg_flags & MSG_TRUNC) != 0 || !isFromThisUser(message))
      continue;
    if (auto arguments = parsed(std::string_view(text).substr(0, static_cast<std::size_t>(count))))
      received.push_back(std::move(*arguments));
  }
}

} // namespace fennick
