#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstdint>
#include <string>

namespace bench {

// A minimal client: one loopback connection that sends a request and reads the answer. Ends the program with
// a message if the server does not answer.
[[nodiscard]] fennick::FileDescriptor connectTo(std::uint16_t port);
// Connects as the phone number `phone` of many, each with its own address.
[[nodiscard]] fennick::FileDescriptor connectAs(int phone, std::uint16_t port);
void sendText(const fennick::FileDescriptor &socket, const std::string &text);
// Sends `bytes` of a body that begins like a JPEG.
void sendBody(const fennick::FileDescriptor &socket, std::int64_t bytes);
// Returns the first line of the answer after the server has closed the connection.
[[nodiscard]] std::string readStatusLine(const fennick::FileDescriptor &socket);

// Fetches `target` and returns the body. Ends the program if the answer is not a success.
[[nodiscard]] std::string fetch(std::uint16_t port, const std::string &target);

// Uploads a whole body to the request target `target`. Ends the program if the answer is not a success.
void upload(std::uint16_t port, const std::string &method, const std::string &target, std::int64_t bytes);

} // namespace bench
