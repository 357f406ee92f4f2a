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

// Files of this computer on their way into the save folder: one after another on a thread of their own, as
// copies; what was asked for meanwhile joins in. Main thread.
class PhotoImport : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool running READ isRunning NOTIFY changed)
  Q_PROPERTY(int done READ done NOTIFY changed)
  Q_PROPERTY(int total READ total NOTIFY changed) // 0 while folders are being looked through

public:
  // All outlive the object. `providers` are asked on the import's thread; "isStopped" is this object's own.
  struct Services {
    fennick::FileImporter::Providers providers;
    fennick::FileSystem &files;
    fennick::IncomingFolder &incoming;
    const fennick::Clock &clock;
    fennick::UploadActivity &activity;
    fennick::MainQueue &mainQueue;
  };
  explicit PhotoImport(Services services);
  ~PhotoImport() override; // what is under way is given up, without a trace in the save folder

  // Photos and videos, and folders, of which what lies directly inside is meant. What the wall shows already
  // is passed over.
  void importFiles(std::vector<std::filesystem::path> files);
  // A picture that is no file; `name` is what it is called, for the record.
  void importPicture(std::string bytes, std::string name);
  // Gives up what is under way and what waits; what is saved stays.
  Q_INVOKABLE void stop();
  // The same for the end of the program: nothing is imported after it, and `onUpload` not called again.
  void end();

  [[nodiscard]] bool isRunning() const { return batches_ > 0; }
  [[nodiscard]] int done() const { return done_; }
  [[nodiscard]] int total() const { return total_; }

signals:
  void changed();
  // Everything that was asked for has been tried; `problem` names what was not brought in, and why, and is
  // empty when there is nothing to say.
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
  int batches_ = 0; // that were asked for and are not over
  int done_ = 0;
  int total_ = 0;
  std::vector<Failure> failures_;
  std::uint64_t lastBatch_ = 0;
  bool ended_ = false;
  std::atomic<std::uint64_t> stoppedUpTo_ = 0;  // batches up to this one are given up
  std::uint64_t current_ = 0;                   // of the queue's thread: the batch at work
  fennick::FileImporter importer_;              // of the queue's thread
  std::unique_ptr<fennick::SerialQueue> queue_; // from the first import on; last: it uses the above
};

} // namespace quarrow
