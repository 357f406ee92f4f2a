#pragma once

#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"
#include "FennickCore/Upload/FileImporter.h"

#include <QObject>

#include <atomic>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quarrow {

// Copies files of this computer into the save folder, one after another on a thread of its own; requests
// during an import join it. Main thread.
class PhotoImport : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool running READ isRunning NOTIFY changed)
  Q_PROPERTY(int done READ done NOTIFY changed)
  Q_PROPERTY(int total READ total NOTIFY changed) // 0 while folders are being read

public:
  // All outlive the object. `providers` are called on the import's thread; "isStopped" is set by this object.
  struct Services {
    fennick::FileImporter::Providers providers;
    fennick::FileSystem &files;
    fennick::IncomingFolder &incoming;
    const fennick::Clock &clock;
    fennick::UploadActivity &activity;
    fennick::MainQueue &mainQueue;
  };
  explicit PhotoImport(Services services);
  ~PhotoImport() override; // aborts the import without leaving anything in the save folder

  // Imports photos and videos, and those directly in folders. Files that the wall shows already are skipped.
  void importFiles(std::vector<std::filesystem::path> files);
  // Imports a picture that is not a file; `name` is recorded as its original name.
  void importPicture(std::string bytes, std::string name);
  // Aborts the current file and drops the waiting ones; saved copies stay.
  Q_INVOKABLE void stop();
  // Like `stop`, for the end of the program: nothing is imported afterwards, and `onUpload` is not called
  // again.
  void end();

  [[nodiscard]] bool isRunning() const { return batches_ > 0; }
  [[nodiscard]] int done() const { return done_; }
  [[nodiscard]] int total() const { return total_; }

signals:
  void changed();
  // All requested files were tried. `problem` names the ones that failed, and why; empty if there are none.
  void finished(const QString &problem);

private:
  using Result = std::expected<void, fennick::ImportFault>;
  struct Failure {
    std::string name;
    fennick::ImportFault fault;
  };

  [[nodiscard]] fennick::FileImporter::Providers withStop(fennick::FileImporter::Providers providers);
  void start(std::function<void()> batch);
  void importAll(const std::vector<std::filesystem::path> &files);
  [[nodiscard]] std::vector<std::filesystem::path>
  wanted(const std::vector<std::filesystem::path> &files) const;
  void postToMain(std::function<void()> task);
  void expect(std::size_t files);
  void note(const std::string &name, const Result &result);
  void endBatch();
  [[nodiscard]] QString problem() const;

  fennick::MainQueue &mainQueue_;
  const std::function<fennick::SaveDestination()> destination_;
  fennick::Lifetime lifetime_;
  int batches_ = 0; // requests that have not ended
  int done_ = 0;
  int total_ = 0;
  std::vector<Failure> failures_;
  std::uint64_t lastBatch_ = 0;
  bool ended_ = false;
  std::atomic<std::uint64_t> stoppedUpTo_ = 0;  // batches up to this one are given up
  std::uint64_t current_ = 0;                   // of the queue's thread: the batch at work
  fennick::FileImporter importer_;              // of the queue's thread
  std::unique_ptr<fennick::SerialQueue> queue_; // created with the first import; last: it uses the above
};

} // namespace quarrow
