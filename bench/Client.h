#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstdint>
#include <string>

namespace bench {

// A phone reduced to what costs time: one connection over loopback that sends a request and reads the answer.
// Ends the program with a message when the server is not there.
[[nodiscard]] fennick::FileDescriptor connectTo(std::uint16_t port);
// The same as the phone number `phone` of many, each with an address of its own.
[[nodiscard]] fennick::FileDescriptor connectAs(int phone, std::uint16_t port);
void sendText(const fennick::FileDescriptor &socket, const std::string &text);
// Sends `bytes` of a body that begins like a JPEG.
void sendBody(const fennick::FileDescriptor &socket, std::int64_t bytes);
// The first line of the answer, once the server has closed the connection.
[[nodiscard]] std::string readStatusLine(const fennick::FileDescriptor &socket);

// Fetches `target` and gives the body; ends the program when the answer is not a success.
[[nodiscard]] std::string fetch(std::uint16_t port, const std::string &target);

// A whole upload; ends the program when the answer is not a success. `target` is the request target.
void upload(std::uint16_t port, const std::string &method, const std::string &target, std::int64_t bytes);

} // namespace bench
