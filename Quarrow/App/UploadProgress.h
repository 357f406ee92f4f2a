#pragma once

#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Upload/UploadActivity.h"

#include <QObject>

namespace quarrow {

// The progress and speed of the uploads as users see it. Refreshed four times a second while data arrives and
// not at all otherwise. Main thread.
class UploadProgress : public QObject {
  Q_OBJECT
  Q_PROPERTY(qint64 uploads READ uploads NOTIFY changed) // in progress
  Q_PROPERTY(qint64 receivedBytes READ receivedBytes NOTIFY changed)
  Q_PROPERTY(qint64 expectedBytes READ expectedBytes NOTIFY changed)
  Q_PROPERTY(double bytesPerSecond READ bytesPerSecond NOTIFY changed) // over the last moments

public:
  UploadProgress(fennick::MainQueue &mainQueue, const fennick::Clock &clock);

  // Nothing is refreshed before this is set.
  void setWatched(bool watched);

  [[nodiscard]] qint64 uploads() const { return activity_.uploads; }
  [[nodiscard]] qint64 receivedBytes() const { return activity_.receivedBytes; }
  [[nodiscard]] qint64 expectedBytes() const { return activity_.expectedBytes; }
  [[nodiscard]] double bytesPerSecond() const { return bytesPerSecond_; }
  [[nodiscard]] const fennick::UploadActivity::Snapshot &snapshot() const { return activity_; }

  // Counts the uploads of the router.
  [[nodiscard]] fennick::UploadActivity &counter() { return counter_; }

signals:
  void changed();

private:
  void begin();
  void refresh();

  fennick::MainQueue &mainQueue_;
  const fennick::Clock &clock_;
  fennick::Lifetime lifetime_;
  fennick::UploadActivity::Snapshot activity_{};
  bool watched_ = false;
  bool runs_ = false; // a refresh is scheduled
  fennick::Uptime refreshedAt_;
  std::int64_t refreshedBytes_ = 0;
  double bytesPerSecond_ = 0;
  fennick::UploadActivity counter_; // last: it calls in
};

} // namespace quarrow
