#include "Quarrow/App/UploadProgress.h"

namespace quarrow {

namespace {
constexpr fennick::Seconds kInterval{0.25}; // smooth, but still readable
constexpr double kNewShare =
    0.3; // weight of the latest interval in the displayed speed, so that it does not jump
} // namespace

UploadProgress::UploadProgress(fennick::MainQueue &mainQueue, const fennick::Clock &clock)
    : mainQueue_(mainQueue), clock_(clock),
      counter_([this] { mainQueue_.post(lifetime_.guard([this] { begin(); })); }) {}

void UploadProgress::setWatched(bool watched) {
  watched_ = watched;
  if (counter_.snapshot().uploads > 0)
    begin();
}

void UploadProgress::begin() {
  if (runs_ || !watched_)
    return;
  runs_ = true;
  refresh();
}

// Schedules itself only during uploads, so that an idle program sleeps.
void UploadProgress::refresh() {
  activity_ = counter_.snapshot();
  const auto now = clock_.uptime();
  const double seconds = fennick::Seconds(now - refreshedAt_).count();
  const auto arrived = static_cast<double>(activity_.totalBytes - refreshedBytes_);
  if (seconds > 0 && seconds < 4 * kInterval.count())
    bytesPerSecond_ += kNewShare * (arrived / seconds - bytesPerSecond_);
  else
    bytesPerSecond_ = 0; // a new burst
  refreshedAt_ = now;
  refreshedBytes_ = activity_.totalBytes;
  runs_ = watched_ && activity_.uploads > 0;
  if (runs_)
    mainQueue_.postAfter(kInterval, lifetime_.guard([this] { refresh(); }));
  emit changed();
}

} // namespace quarrow
