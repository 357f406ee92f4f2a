#include "FennickCore/Upload/UploadQuery.h"

#include <algorithm>
#include <ranges>

namespace fennick::UploadQuery {

namespace {

using nlohmann::ordered_json;

struct ToJSON {
  ordered_json operator()(std::monostate) const { return {{"state", "unknown"}}; }
  ordered_json operator()(const UploadOutcomes::Receiving &receiving) const {
    return {{"state", "receiving"}, {"bytes", receiving.bytes}};
  }
  ordered_json operator()(const UploadOutcomes::Saved &saved) const {
    return {{"state", "saved"}, {"name", saved.name}};
  }
  ordered_json operator()(const UploadOutcomes::Rejected &rejected) const {
    return {{"state", "rejected"}, {"status", rejected.status}, {"text", rejected.text}};
  }
};

} // namespace

std::optional<std::vector<std::string>> parse(std::string_view list) {
  std::vector<std::string> ids;
  if (list.empty())
    return ids;
  for (const auto piece : std::views::split(list, ',')) {
    ids.emplace_back(piece.begin(), piece.end());
    if (ids.size() > kMostIDs || !isUploadID(ids.back()))
      return std::nullopt;
  }
  return ids;
}

ordered_json answer(const std::vector<std::string> &ids, const UploadOutcomes &outcomes) {
  auto answer = ordered_json::object();
  for (const auto &id : ids)
    answer[id] = std::visit(ToJSON(), outcomes.at(id));
  return answer;
}

} // namespace fennick::UploadQuery
