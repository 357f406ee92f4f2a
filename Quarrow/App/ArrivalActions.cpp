#include "Quarrow/App/ArrivalActions.h"

#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Settings/FolderBookmark.h"
#include "FennickCore/Support/Text.h"

#include <fmt/format.h>

namespace quarrow {

void ArrivalActions::run(const fennick::WorkflowOptions &workflow, const std::filesystem::path &file,
                         std::int64_t bytes) {
  if (workflow.copyToClipboard)
    desktop_.copyToClipboard(file);
  if (workflow.openWithAppBookmark)
    if (const auto application = fennick::FolderBookmark::resolve(*workflow.openWithAppBookmark))
      desktop_.openWith(application->url, file, [](const std::string &reason) {
        fennick::log(fmt::format("open with app failed {}", reason));
      });
  if (workflow.playSound)
    desktop_.playSound();
  if (workflow.notify)
    desktop_.notify(tr("收到照片").toStdString(),
                    fmt::format("{} · {}", file.filename().string(), fennick::fileSizeText(bytes)), file);
}

} // namespace quarrow
