#include "Quarrow/App/FolderLimit.h"

#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Storage/FolderPruner.h"

#include <fmt/format.h>

#include <utility>

namespace quarrow {

FolderLimit::FolderLimit(fennick::Trash &trash, fennick::MainQueue &mainQueue,
                         std::function<void(const Paths &)> pruned)
    : trash_(trash), mainQueue_(mainQueue), pruned_(std::move(pruned)) {}

FolderLimit::~FolderLimit() { stop(); }

void FolderLimit::stop() {
  stopped_ = true;
  queue_.reset();
}

void FolderLimit::prune(std::filesystem::path folder, std::int64_t limit) {
  if (stopped_)
    return;
  Run run{.folder = std::move(folder), .limit = limit};
  if (running_)
    next_ = std::move(run);
  else
    start(std::move(run));
}

void FolderLimit::start(Run run) {
  running_ = true;
  if (!queue_)
    queue_ = std::make_unique<fennick::SerialQueue>("fennick.prune");
  queue_->post([this, run = std::move(run), token = lifetime_.token()] {
    auto files = fennick::FolderPruner::prune(run.folder, run.limit, trash_, [this] { return !stopped_; });
    mainQueue_.post(token.guard([this, run, files = std::move(files)] { finish(run, files); }));
  });
}

void FolderLimit::finish(const Run &run, const Paths &files) {
  running_ = false;
  for (const auto &file : files)
    fennick::log(fmt::format("moved {} to the trash, the folder is limited to {}", file.filename().string(),
                             run.limit));
  if (!files.empty())
    pruned_(files);
  if (const auto next = std::exchange(next_, std::nullopt); next && !stopped_)
    start(*next);
}

} // namespace quarrow
