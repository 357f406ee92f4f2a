#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>

namespace fennick {

// The limits of the listener and of every connection. There are no defaults; `kServiceLimits` has the values
// of this program.
struct HTTPLimits {
  std::int64_t maxHeaderBytes;   // most bytes before the blank line that ends a request head
  Seconds headerTimeout;         // from the start of the connection until its head is complete
  Seconds bodyIdleTimeout;       // longest silence in a body, and longest wait of a download's reader
  std::int64_t maxConnections;   // most connections at once
  std::int64_t rejectDrainBytes; // most body bytes read and discarded after a rejection,
  Seconds rejectDrainTimeout;    // and for how long at most, so that the client reads the answer
  Seconds maxConnectionDuration; // longest duration of a connection in any state
  bool privateSourcesOnly;       // refuse peers that are not on a private or local address
};

// 16 KiB is the common limit of web servers for a head; 15 minutes carry the largest upload over slow Wi-Fi.
inline constexpr HTTPLimits kServiceLimits{.maxHeaderBytes = 16384,
                                           .headerTimeout = Seconds(15),
                                           .bodyIdleTimeout = Seconds(60),
                                           .maxConnections = 64,
                                           .rejectDrainBytes = 2097152,
                                           .rejectDrainTimeout = Seconds(1),
                                           .maxConnectionDuration = Seconds(900),
                                           .privateSourcesOnly = true};

} // namespace fennick
