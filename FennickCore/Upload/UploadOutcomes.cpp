#include "FennickCore/Upload/UploadOutcomes.h"

#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Upload/PhotoSearch.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace fennick {

namespace {

using nlohmann::ordered_json;

constexpr std::size_t kIDLength = 32;
constexpr std::size_t kMostLines = 4 * UploadOutcomes::kMost; // the file is rewritten beyond that

// One line of the file: an upload that is saved under `name`, or is about to appear as `photo` at `file`.
struct Line {
  std::string id;
  std::string name;
  std::filesystem::path file;
  PhotoIdentity photo;
};

std::string textOf(const ordered_json &line) {
  return line.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

std::string lineOf(const std::string &id, const UploadOutcomes::Saved &saved) {
  return textOf({{"id", id}, {"name", saved.name}});
}

std::string lineOf(const std::string &id, const std::filesystem::path &file, const PhotoIdentity &photo) {
  return textOf({{"id", id},
                 {"file", file.string()},
                 {"bytes", photo.bytes},
                 {"modified", photo.modified.time_since_epoch().count()}});
}

// Returns nullopt for an incomplete line, which a killed program leaves.
std::optional<Line> parsed(std::string_view text) {
  try {
    const auto value = ordered_json::parse(text);
    Line line{
        .id = value.at("id").get<std::string>(), .name = value.value("name", ""), .file = {}, .photo = {}};
    if (line.name.empty()) {
      line.file = value.at("file").get<std::string>();
      line.photo.bytes = value.at("bytes").get<std::int64_t>();
      line.photo.modified = Instant(std::chrono::nanoseconds(value.at("modified").get<std::int64_t>()));
    }
    return isUploadID(line.id) ? std::optional(std::move(line)) : std::nullopt;
  } catch (const ordered_json::exception &) {
    return std::nullopt;
  }
}

bool hasAppeared(const Line &line) {
  const auto photo = photoAt(line.file);
  return photo && photo->isSameVersion(line.photo);
}

} // namespace

bool isUploadID(std::string_view text) {
  return text.size() == kIDLength &&
         std::ranges::all_of(text, [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

UploadOutcomes::UploadOutcomes(std::filesystem::path file) : file_(std::move(file)) {
  if (!file_.empty())
    load();
}

void UploadOutcomes::load() {
  const Locked locked(lock_);
  const auto content = readFile(file_);
  if (!content) {
    if (content.error() != std::errc::no_such_file_or_directory)
      log(fmt::format("cannot read {}: {}", file_.string(), content.error().message()));
    return;
  }
  bool isIntact = true;
  std::unordered_map<std::string, Line> appearing;
  for (std::string_view rest = *content; !rest.empty();) {
    const std::size_t end = rest.find('\n');
    if (auto line = parsed(rest.substr(0, end))) {
      if (line->name.empty()) {
        appearing[line->id] = std::move(*line);
      } else {
        appearing.erase(line->id);
        remember(line->id, Saved{line->name});
      }
    }
    ++lines_;
    isIntact = end != std::string_view::npos;
    rest.remove_prefix(isIntact ? end + 1 : rest.size());
  }
  std::erase_if(appearing, [](const auto &entry) { return !hasAppeared(entry.second); });
  for (const auto &[id, line] : appearing)
    remember(id, Saved{line.file.filename().string()});
  if (!isIntact || !appearing.empty() || lines_ > kMostLines)
    rewrite();
}

std::expected<UploadOutcomes::Attempt, UploadOutcomes::Outcome> UploadOutcomes::begin(const std::string &id) {
  const Locked locked(lock_);
  auto &outcome = outcomes_[id];
  if (std::holds_alternative<Saved>(outcome) || std::holds_alternative<Receiving>(outcome))
    return std::unexpected(outcome);
  if (std::holds_alternative<Rejected>(outcome))
    std::erase(finished_, id);
  outcome = Receiving{};
  return Attempt(*this, id);
}

UploadOutcomes::Outcome UploadOutcomes::at(const std::string &id) const {
  const Locked locked(lock_);
  const auto found = outcomes_.find(id);
  return found == outcomes_.end() ? Outcome() : found->second;
}

void UploadOutcomes::finish(const std::string &id, Outcome outcome) {
  const Locked locked(lock_);
  if (const auto *saved = std::get_if<Saved>(&outcome))
    record(lineOf(id, *saved));
  appearing_.erase(id);
  if (std::holds_alternative<std::monostate>(outcome))
    outcomes_.erase(id);
  else
    remember(id, std::move(outcome));
}

void UploadOutcomes::remember(const std::string &id, Outcome outcome) {
  outcomes_[id] = std::move(outcome);
  finished_.push_back(id);
  if (finished_.size() <= kMost)
    return;
  outcomes_.erase(finished_.front());
  finished_.pop_front();
}

void UploadOutcomes::record(const std::string &line) {
  if (file_.empty())
    return;
  if (lines_ >= kMostLines)
    rewrite();
  ++lines_;
  if (const auto done = append(line); !done) {
    log(fmt::format("cannot write {}: {}", file_.string(), done.error().message()));
    lines_ = kMostLines; // an incomplete line may be at its end
  }
}

IOResult<void> UploadOutcomes::append(const std::string &line) {
  if (!record_) {
    std::error_code ignored;
    std::filesystem::create_directories(file_.parent_path(), ignored);
    auto opened = AppendedFile::open(file_);
    if (!opened)
      return std::unexpected(opened.error());
    record_ = std::move(*opened);
  }
  return record_->append(line);
}

void UploadOutcomes::rewrite() {
  std::string content;
  lines_ = 0;
  for (const auto &id : finished_)
    if (const auto *saved = std::get_if<Saved>(&outcomes_.at(id))) {
      content += lineOf(id, *saved);
      ++lines_;
    }
  for (const auto &[id, line] : appearing_) {
    content += line;
    ++lines_;
  }
  record_.reset();
  if (const auto done = replaceFile(file_, content); !done)
    log(fmt::format("cannot write {}: {}", file_.string(), done.error().message()));
}

UploadOutcomes::Attempt::Attempt(Attempt &&other) noexcept
    : owner_(std::exchange(other.owner_, nullptr)), id_(std::move(other.id_)) {}

UploadOutcomes::Attempt &UploadOutcomes::Attempt::operator=(Attempt &&other) noexcept {
  std::swap(owner_, other.owner_);
  std::swap(id_, other.id_);
  return *this;
}

UploadOutcomes::Attempt::~Attempt() { end({}); }

void UploadOutcomes::Attempt::received(std::int64_t bytes) {
  if (owner_ == nullptr)
    return;
  const Locked locked(owner_->lock_);
  if (auto *receiving = std::get_if<Receiving>(&owner_->outcomes_[id_]))
    receiving->bytes += bytes;
}

void UploadOutcomes::Attempt::willAppear(const std::filesystem::path &partFile,
                                         const std::filesystem::path &file) {
  const auto photo = owner_ != nullptr ? photoAt(partFile) : std::nullopt;
  if (!photo)
    return;
  const Locked locked(owner_->lock_);
  const auto &line = owner_->appearing_[id_] = lineOf(id_, file, *photo);
  owner_->record(line);
}

void UploadOutcomes::Attempt::answered(const HTTPResponse &response) {
  if (response.status == 200)
    end(Saved{response.body});
  else
    end(Rejected{response.status, response.body});
}

void UploadOutcomes::Attempt::end(Outcome outcome) {
  if (owner_ != nullptr)
    std::exchange(owner_, nullptr)->finish(id_, std::move(outcome));
}

} // namespace fennick
