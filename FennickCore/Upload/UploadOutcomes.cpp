#include "FennickCore/Upload/UploadOutcomes.h"

#include "FennickCore/Platform/Log.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace fennick {

namespace {

using nlohmann::ordered_json;

constexpr std::size_t kIDLength = 32;
constexpr std::size_t kMostLines = 4 * UploadOutcomes::kMost; // then the file is written anew

std::string lineOf(const std::string &id, const UploadOutcomes::Saved &saved) {
  const ordered_json line{{"id", id}, {"name", saved.name}};
  return line.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

// Returns nullopt for a line that a killed program left incomplete.
std::optional<std::pair<std::string, std::string>> parsed(std::string_view line) {
  const auto value = ordered_json::parse(line, nullptr, false);
  if (!value.is_object() || !value.contains("id") || !value.contains("name") || !value["id"].is_string() ||
      !value["name"].is_string() || !isUploadID(value["id"].get<std::string>()))
    return std::nullopt;
  return std::pair(value["id"].get<std::string>(), value["name"].get<std::string>());
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
  for (std::string_view rest = *content; !rest.empty();) {
    const std::size_t end = rest.find('\n');
    if (const auto line = parsed(rest.substr(0, end)))
      remember(line->first, Saved{line->second});
    ++lines_;
    isIntact = end != std::string_view::npos;
    rest.remove_prefix(isIntact ? end + 1 : rest.size());
  }
  if (!isIntact || lines_ > kMostLines)
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
    record(id, *saved);
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

void UploadOutcomes::record(const std::string &id, const Saved &saved) {
  if (file_.empty())
    return;
  if (lines_ >= kMostLines)
    rewrite();
  ++lines_;
  if (const auto done = append(lineOf(id, saved)); !done) {
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
