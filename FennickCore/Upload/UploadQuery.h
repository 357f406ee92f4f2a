#pragma once

#include "FennickCore/Upload/UploadOutcomes.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The part of the status query with which a phone asks for the outcome of its uploads. Stateless; any thread.
namespace fennick::UploadQuery {

// Most identities in one query, so that a request head always has room for them.
inline constexpr std::size_t kMostIDs = 64;

// Returns the identities in `list`, which are separated by commas; `list` may be empty. Returns nullopt if
// there are too many or one is malformed.
[[nodiscard]] std::optional<std::vector<std::string>> parse(std::string_view list);

// Returns an object with the outcome of each upload under its identity.
[[nodiscard]] nlohmann::ordered_json answer(const std::vector<std::string> &ids,
                                            const UploadOutcomes &outcomes);

} // namespace fennick::UploadQuery
