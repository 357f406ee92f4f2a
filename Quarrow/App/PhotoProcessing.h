#pragma once

#include "FennickCore/Imaging/ImagePipeline.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"
#include "FennickCore/Upload/PendingPhotos.h"
#include "FennickCore/Upload/UploadRecord.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quarrow {

// Processes received photos one after another on a queue of its own ("fennick.imaging"), with the options of
// the moment when a photo's turn comes, and resumes what an earlier run left.
class PhotoProcessing {
public:
  struct Finished {
    fennick::UploadRecord upload;
    fennick::ProcessResult result;
    fennick::PrivateData left; // what was to be removed and is, or may be, still in the file
    bool resumed = false;      // received by an earlier run
  };
  struct Observer {
    // A photo has its final name. Called on the queue.
    std::function<void(const std::filesystem::path &file)> named;
    // Both are called on the main thread while the object exists.
    std::function<void(const Finished &)> finished;
    // The number of photos that wait or are being processed. Changes are reported after half a second, so
    // that a photo that takes no time is not mentioned.
    std::function<void(int photos)> waiting;
  };
  // All outlive the object.
  struct Services {
    fennick::PictureDecoder &decoder;
    fennick::FileSystem &files;
    fennick::Trash &trash;
    fennick::MainQueue &mainQueue;
    fennick::PendingPhotos &pending;
  };

  PhotoProcessing(const Services &services, Observer observer);
  ~PhotoProcessing();
  PhotoProcessing(const PhotoProcessing &) = delete;
  PhotoProcessing &operator=(const PhotoProcessing &) = delete;

  // Adds a received photo. Any thread.
  void add(const fennick::UploadRecord &upload);
  // Resumes what an earlier run left in `incoming`, in which nobody works. Any thread.
  void takeOver(const std::filesystem::path &incoming, const fennick::IncomingHold &hold);
  // Finds photos that an earlier run left in the save folder, and recorded photos that were renamed. Call it
  // for a new save folder, after changes in it and after changes of the imaging options. Main thread.
  void look();

  // Starts no further photo and waits for the current one, at most for `most`. Recorded photos that wait are
  // left to the next run; others are reported as received. Main thread.
  void finishCurrent(fennick::Seconds most);
  // Ends the processing and waits for the current photo. Main thread.
  void end();

private:
  struct Job {
    std::string entry;
    std::optional<fennick::UploadRecord> upload{}; // absent if an earlier run received the photo
  };
  enum class Ending { reported, again, left };

  void post(Job job);
  void run(const Job &job);
  void resume(const std::vector<std::string> &entries);
  void leave(const Job &job);
  Ending process(const Job &job, int round);
  [[nodiscard]] fennick::ProcessResult work(const std::string &entry,
                                            const fennick::PendingPhotos::Work &work);
  void report(Finished finished);
  void count(int change);
  void announceCount();
  void postToMain(fennick::Seconds delay, std::function<void()> task);

  const Services services_;
  const Observer observer_;
  fennick::Lifetime lifetime_;

  fennick::Mutex lock_;
  std::condition_variable changed_;
  bool ending_ GUARDED_BY(lock_) = false;
  bool working_ GUARDED_BY(lock_) = false;
  bool looks_ GUARDED_BY(lock_) = false;     // the folder will be looked at
  bool announces_ GUARDED_BY(lock_) = false; // an announcement of the count is scheduled
  int waiting_ GUARDED_BY(lock_) = 0;
  std::unique_ptr<fennick::SerialQueue> lookQueue_; // exists while a photo is being processed
  fennick::SerialQueue queue_{"fennick.imaging"};   // last: what runs on it uses all of the above
};

} // namespace quarrow
