#include "Quarrow/App/FolderCleaner.h"

#include "FennickCore/Storage/Leftovers.h"

namespace quarrow {

void FolderCleaner::clear(const std::filesystem::path &saveFolder) {
  if (stopped_)
    return;
  if (!queue_)
    queue_ = std::make_unique<fennick::SerialQueue>("fennick.cleaning");
  queue_->post([this, saveFolder] {
    fennick::clearSaveFolder(saveFolder, files_, [this] { return stopped_.load(); });
    if (!stopped_)
      incoming_.adopt(saveFolder);
  });
}

void FolderCleaner::stop() {
  stopped_ = true;
  queue_.reset();
}

} // namespace quarrow
