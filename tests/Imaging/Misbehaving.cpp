// Replaces the imaging process and misbehaves as its argument says at each request. A picture that begins
// with "good" is answered properly.

#include "FennickCore/Imaging/ImagingWire.h"
#include "FennickCore/Platform/Files/MemoryFile.h"
#include "FennickCore/Platform/Processes/ChildProcess.h"
#include "FennickCore/Platform/Processes/MessageSocket.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <span>
#include <string>

namespace {

using namespace fennick;

void send(MessageSocket &socket, const std::string &message, const FileDescriptor *attached = nullptr) {
  if (!socket.send(std::as_bytes(std::span(message)), attached))
    ::_exit(EXIT_FAILURE);
}

bool isGood(const FileDescriptor &file) {
  std::array<char, 4> start{};
  return ::pread(file.get(), start.data(), start.size(), 0) == 4 && std::string(start.data(), 4) == "good";
}

// The length is the time that the search for a size has, in seconds.
wire::Answer answerTo(std::span<const std::byte> message) {
  wire::Answer answer;
  const auto request = wire::decodedRequest({reinterpret_cast<const char *>(message.data()), message.size()});
  if (const auto *render = request ? std::get_if<RenderRequest>(&*request) : nullptr)
    answer.longEdge = static_cast<std::int64_t>(render->searchTime.value_or(Seconds(-1)).count());
  return answer;
}

void misbehave(const std::string &way, MessageSocket &socket) {
  if (way == "crash")
    std::abort();
  if (way == "hang")
    while (true)
      ::pause();
  if (way == "leave")
    ::_exit(0);
  if (way == "babble")
    return send(socket, R"({"facts": 7})");
  if (way == "no-bytes")
    return send(socket, wire::encoded(wire::Answer{}));
  if (way == "unsealed") {
    FileDescriptor file(::memfd_create("picture", 0));
    if (::write(file.get(), "bytes", 5) == 5)
      send(socket, wire::encoded(wire::Answer{}), &file);
  }
}

} // namespace

int main(int, char *argv[]) {
  const std::string way = argv[1] != nullptr ? argv[1] : "";
  MessageSocket socket{FileDescriptor(ChildProcess::kHandedDescriptor)};
  if (way == "no-hello")
    return EXIT_SUCCESS;
  send(socket, wire::encoded(wire::Hello{
                   .lockedDown = way != "open", .encodesHEIC = true, .detail = "there is no sandbox here"}));
  std::array<std::byte, wire::kMostMessageBytes> buffer{};
  while (true) {
    const auto request = socket.receive(buffer);
    if (!request || request->bytes == 0)
      return EXIT_SUCCESS;
    if (!isGood(request->attached)) {
      misbehave(way, socket);
      continue;
    }
    const auto bytes = sealedMemoryFile(std::to_string(::getpid()));
    send(socket, wire::encoded(answerTo(std::span(buffer).first(request->bytes))), &*bytes);
  }
}
