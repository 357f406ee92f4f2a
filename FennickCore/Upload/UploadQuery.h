#pragma once

#include "FennickCore/Upload/UploadOutcomes.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The part of the status query in which a phone asks what became of its uploads. Stateless; any thread.
namespace fennick::UploadQuery {

// Most identities in one query; as many as fit into a request head with room to spare.
inline constexpr std::size_t kMostIDs = 64;

// The identities in `list`, which separates them by commas and may be empty. Returns nullopt if there are too
// many or one is malformed.
[[nodiscard]] std::optional<std::vector<std::string>> parse(std::string_view list);

// An object with the outcome of each upload under its identity.
[[nodiscard]] nlohmann::ordered_json answer(const std::vector<std::string> &ids,
                                            const UploadOutcomes &outcomes);

} // namespace fennick::UploadQuery
