#include "FennickCore/Upload/UploadActivity.h"

namespace fennick {

UploadActivity::Snapshot UploadActivity::snapshot() const {
  const Locked locked(lock_);
  return state_;
}

UploadActivity::Upload::Upload(UploadActivity &activity, std::int64_t expectedBytes)
    : activity_(activity), expectedBytes_(expectedBytes) {
  bool first = false;
  {
    const Locked locked(activity_.lock_);
    first = activity_.state_.uploads++ == 0;
    activity_.state_.expectedBytes += expectedBytes_;
  }
  if (first && activity_.onBusy_)
    activity_.onBusy_();
}

UploadActivity::Upload::~Upload() {
  const Locked locked(activity_.lock_);
  --activity_.state_.uploads;
  activity_.state_.expectedBytes -= expectedBytes_;
  activity_.state_.receivedBytes -= receivedBytes_;
}

void UploadActivity::Upload::received(std::int64_t bytes) {
  receivedBytes_ += bytes;
  const Locked locked(activity_.lock_);
  activity_.state_.receivedBytes += bytes;
  activity_.state_.totalBytes += bytes;
}

} // namespace fennick
