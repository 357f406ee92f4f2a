#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>

namespace fennick {

// The limits that the listener and every connection obey. There are no defaults: whoever makes the server
// says what it allows (see `kServiceLimits` for the values this program runs with).
struct HTTPLimits {
  std::int64_t maxHeaderBytes;   // most bytes before the blank line that ends a request head
  Seconds headerTimeout;         // from the start of the connection until its head is complete
  Seconds bodyIdleTimeout;       // longest silence in a body, and longest wait of a download's reader
  std::int64_t maxConnections;   // most connections at once
  std::int64_t rejectDrainBytes; // most body bytes read and dropped after a rejection,
  Seconds rejectDrainTimeout;    // and for how long at most, so that the client reads the answer
  Seconds maxConnectionDuration; // hard lifetime of a connection, whatever it is doing
  bool privateSourcesOnly;       // refuse peers that are not on a private or local address
};

// 16 KiB is what browsers' own servers allow for a head; 15 minutes carry the largest upload over slow Wi-Fi.
inline constexpr HTTPLimits kServiceLimits{.maxHeaderBytes = 16384,
                                           .headerTimeout = Seconds(15),
                                           .bodyIdleTimeout = Seconds(60),
                                           .maxConnections = 64,
                                           .rejectDrainBytes = 2097152,
                                           .rejectDrainTimeout = Seconds(1),
                                           .maxConnectionDuration = Seconds(900),
                                           .privateSourcesOnly = true};

} // namespace fennick
