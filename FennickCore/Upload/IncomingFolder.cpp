#include "FennickCore/Upload/IncomingFolder.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/DirectoryWatch.h"
#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Platform/System/Random.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace fennick {

namespace {

constexpr std::string_view kPartSuffix = ".part";

// Only files named like part files or unfinished encodings are ever removed.
bool isTemporaryName(std::string_view name) {
  const auto dot = std::min(name.find('.'), name.size());
  const std::string_view suffix = name.substr(dot);
  return (suffix == kPartSuffix || suffix == kProcessedSuffix) && isUUID(name.substr(0, dot));
}

} // namespace

void IncomingFolder::adopt(const std::filesystem::path &saveFolder) {
  const auto incoming = saveFolder / kIncomingFolder;
  if (fileKind(incoming) == FileKind::directory)
    share(incoming);
}

IOResult<IncomingHold> IncomingFolder::hold(const std::filesystem::path &saveFolder) {
  const auto incoming = saveFolder / kIncomingFolder;
  if (auto made = files_.createDirectories(incoming); !made)
    return std::unexpected(made.error());
  return share(incoming);
}

IOResult<IncomingPart> IncomingFolder::createPart(const std::filesystem::path &saveFolder) {
  auto held = hold(saveFolder);
  if (!held)
    return std::unexpected(held.error());
  IncomingPart part{.file = saveFolder / kIncomingFolder / (newUUID() + std::string(kPartSuffix)),
                    .handle = nullptr,
                    .hold = std::move(*held)};
  auto handle = files_.createFile(part.file);
  if (!handle)
    return std::unexpected(handle.error());
  part.handle = std::move(*handle);
  return part;
}

// Returns the hold that other threads of this program share, or a new one if there is none, the save folder
// changed or the folder was replaced. Two threads that begin at once get one hold each.
IncomingHold IncomingFolder::share(const std::filesystem::path &incoming) {
  const auto identity = fileIdentity(incoming);
  {
    const Locked locked(lock_);
    if (auto held = held_.lock();
        held && heldFolder_ == incoming && identity && *identity == held->identity())
      return held;
  }
  auto fresh = acquire(incoming);
  const Locked locked(lock_);
  held_ = fresh;
  heldFolder_ = incoming;
  return fresh;
}

// If this program is alone in the folder, everything in it was left by a run that crashed. Otherwise leaves
// everything and waits for another program that is clearing the folder.
IncomingHold IncomingFolder::acquire(const std::filesystem::path &incoming) {
  auto alone = DirectoryLock::tryLock(incoming, DirectoryLock::Mode::exclusive);
  if (!alone) {
    auto shared = DirectoryLock::lock(incoming, DirectoryLock::Mode::shared);
    return shared ? std::make_shared<const DirectoryLock>(std::move(*shared)) : nullptr;
  }
  const auto hold = std::make_shared<DirectoryLock>(std::move(*alone));
  if (mayTakeOver(incoming)) {
    if (takeOver_)
      takeOver_(incoming, hold);
    removeLeftovers(incoming);
  }
  return hold->share() ? hold : nullptr;
}

bool IncomingFolder::mayTakeOver(const std::filesystem::path &incoming) {
  const bool isLocal = isOnLocalDrive(incoming);
  const Locked locked(lock_);
  return seen_.insert(incoming).second || isLocal;
}

void IncomingFolder::removeLeftovers(const std::filesystem::path &incoming) {
  const auto entries = files_.list(incoming);
  if (!entries)
    return;
  int removed = 0;
  for (const auto &entry : *entries)
    if (entry.kind == FileKind::regular && isTemporaryName(entry.name) &&
        files_.remove(incoming / entry.name))
      ++removed;
  if (removed > 0)
    log(fmt::format("removed {} unfinished uploads of an earlier run", removed));
}

} // namespace fennick
