#include "FennickCore/Network/NetworkWatcher.h"

#include "FennickCore/Network/LANAddressResolver.h"
#include "FennickCore/Platform/Network/RouteMonitor.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace fennick {

namespace {

using Woken = RouteMonitor::Woken;

constexpr Seconds kQuiet{0.3}; // longer than the burst of changes when a network is joined
constexpr Seconds kLongest{2};

// Waits until no change has arrived for kQuiet, but not longer than the limit. Returns false if interrupted.
bool letSettle(RouteMonitor &monitor) {
  const SystemClock clock;
  const Uptime end = after(clock.uptime(), kLongest);
  auto woken = Woken::changes;
  for (Uptime now = clock.uptime(); woken == Woken::changes && now < end; now = clock.uptime())
    woken = monitor.awaitChanges(std::min(kQuiet, Seconds(end - now)));
  return woken != Woken::interrupted;
}

} // namespace

// The state between a start and a stop.
struct NetworkWatcher::State {
  State(MainQueue &queueOfMain, OnChange callback) : mainQueue(queueOfMain), onChange(std::move(callback)) {
    queue.post([this] { run(); });
  }
  ~State() { monitor.interrupt(); }

  void run();
  void report();

  MainQueue &mainQueue;
  const OnChange onChange;
  Lifetime lifetime;
  std::optional<std::vector<LANAddress>> reported; // for the queue's thread only
  RouteMonitor monitor;
  SerialQueue queue{"fennick.network.watcher"}; // last: its task uses all of the above
};

void NetworkWatcher::State::run() {
  report();
  while (monitor.awaitChanges() == Woken::changes && letSettle(monitor))
    report();
}

void NetworkWatcher::State::report() {
  auto addresses = LANAddressResolver::snapshot();
  if (reported == addresses)
    return;
  reported = addresses;
  // The callback is copied because it may destroy the watcher.
  mainQueue.post(lifetime.guard([call = onChange, addresses = std::move(addresses)] { call(addresses); }));
}

NetworkWatcher::NetworkWatcher(MainQueue &mainQueue, OnChange onChange)
    : mainQueue_(mainQueue), onChange_(std::move(onChange)) {}

NetworkWatcher::~NetworkWatcher() = default;

void NetworkWatcher::start() {
  if (!state_)
    state_ = std::make_unique<State>(mainQueue_, onChange_);
}

void NetworkWatcher::stop() { state_.reset(); }

} // namespace fennick
