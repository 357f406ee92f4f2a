#include "tests/Support/FaultyFileSystem.h"

#include <cerrno>
#include <utility>

namespace fennick::test {

namespace fs = std::filesystem;

class FaultyFileSystem::File final : public WritableFile {
public:
  File(FaultyFileSystem &owner, std::unique_ptr<WritableFile> file) : owner_(owner), file_(std::move(file)) {}

  IOResult<void> write(std::span<const std::byte> bytes) override {
    return owner_.run(Operation::write, [&] { return file_->write(bytes); });
  }
  IOResult<void> sync() override {
    return owner_.run(Operation::sync, [&] { return file_->sync(); });
  }
  IOResult<void> close() override {
    const auto entered = owner_.enter(Operation::close);
    const auto closed = file_->close();
    return entered ? closed : entered;
  }

private:
  FaultyFileSystem &owner_;
  std::unique_ptr<WritableFile> file_;
};

void FaultyFileSystem::failNext(Operation operation, int error) {
  const Locked locked(lock_);
  Switch &chosen = switches_[operation];
  chosen.failAt = chosen.calls + 1;
  chosen.always = false;
  chosen.error = error;
}

void FaultyFileSystem::failAlways(Operation operation, int error) {
  const Locked locked(lock_);
  Switch &chosen = switches_[operation];
  chosen.always = true;
  chosen.error = error;
}

void FaultyFileSystem::mend(Operation operation) {
  const Locked locked(lock_);
  Switch &chosen = switches_[operation];
  chosen.always = false;
  chosen.failAt = 0;
}

void FaultyFileSystem::before(Operation operation, std::function<void()> action) {
  const Locked locked(lock_);
  switches_[operation].before = std::move(action);
}

void FaultyFileSystem::dieAt(int change) {
  const Locked locked(lock_);
  deathAt_ = changes_ + change;
}

bool FaultyFileSystem::died() const {
  const Locked locked(lock_);
  return deathAt_ > 0 && changes_ >= deathAt_;
}

bool FaultyFileSystem::isDead(Operation operation) {
  if (operation == Operation::list || operation == Operation::availableBytes)
    return false;
  return ++changes_ >= deathAt_ && deathAt_ > 0;
}

void FaultyFileSystem::setAvailableBytes(std::optional<std::int64_t> bytes) {
  const Locked locked(lock_);
  availableBytes_ = bytes;
}

int FaultyFileSystem::calls(Operation operation) const {
  const Locked locked(lock_);
  const auto found = switches_.find(operation);
  return found == switches_.end() ? 0 : found->second.calls;
}

IOResult<void> FaultyFileSystem::enter(Operation operation) {
  std::function<void()> before;
  bool fails = false;
  int error = 0;
  {
    const Locked locked(lock_);
    Switch &chosen = switches_[operation];
    ++chosen.calls;
    before = chosen.before;
    const bool dead = isDead(operation);
    fails = dead || chosen.always || chosen.calls == chosen.failAt;
    error = dead ? EIO : chosen.error;
  }
  if (before)
    before();
  if (fails)
    return std::unexpected(std::error_code(error, std::generic_category()));
  return {};
}

IOResult<std::unique_ptr<WritableFile>> FaultyFileSystem::createFile(const fs::path &file) {
  auto created = run(Operation::createFile, [&] { return system_.createFile(file); });
  if (created)
    created = std::make_unique<File>(*this, std::move(*created));
  return created;
}

IOResult<void> FaultyFileSystem::createDirectories(const fs::path &folder) {
  return run(Operation::createDirectories, [&] { return system_.createDirectories(folder); });
}

IOResult<void> FaultyFileSystem::moveNoReplace(const fs::path &from, const fs::path &to) {
  return run(Operation::moveNoReplace, [&] { return system_.moveNoReplace(from, to); });
}

IOResult<void> FaultyFileSystem::replace(const fs::path &from, const fs::path &to) {
  return run(Operation::replace, [&] { return system_.replace(from, to); });
}

IOResult<void> FaultyFileSystem::link(const fs::path &from, const fs::path &to) {
  return run(Operation::link, [&] { return system_.link(from, to); });
}

IOResult<void> FaultyFileSystem::remove(const fs::path &file) {
  return run(Operation::remove, [&] { return system_.remove(file); });
}

IOResult<void> FaultyFileSystem::syncDirectory(const fs::path &folder) {
  return run(Operation::syncDirectory, [&] { return system_.syncDirectory(folder); });
}

IOResult<std::vector<DirectoryEntry>> FaultyFileSystem::list(const fs::path &folder) {
  return run(Operation::list, [&] { return system_.list(folder); });
}

IOResult<std::int64_t> FaultyFileSystem::availableBytes(const fs::path &folder) {
  if (const auto entered = enter(Operation::availableBytes); !entered)
    return std::unexpected(entered.error());
  {
    const Locked locked(lock_);
    if (availableBytes_)
      return *availableBytes_;
  }
  return system_.availableBytes(folder);
}

} // namespace fennick::test
