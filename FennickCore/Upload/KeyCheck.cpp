#include "FennickCore/Upload/KeyCheck.h"

#include <utility>

namespace fennick {

namespace {

// A page has at most six requests in flight and stops after its first rejection.
constexpr Seconds kBurst{10};

// Takes the same time for all keys of one length, so that the response time reveals nothing about the key.
bool sameKey(std::string_view given, std::string_view key) {
  if (given.size() != key.size() || given.empty())
    return false;
  unsigned char difference = 0;
  for (std::size_t i = 0; i < key.size(); ++i)
    difference = static_cast<unsigned char>(difference | (given[i] ^ key[i]));
  return difference == 0;
}

} // namespace

bool KeyCheck::isCurrent(const HTTPRequestHead &head) const {
  const auto given = head.query.find("k");
  return given != head.query.end() && sameKey(given->second, keys_.current());
}

HTTPReject::Failure KeyCheck::failure(const HTTPRequestHead &head, const std::string &remote, Uptime now) {
  const auto given = head.query.find("k");
  if (given == head.query.end() || !keys_.wasValid(given->second))
    return HTTPReject::Failure::counted;
  const Locked locked(lock_);
  std::erase_if(counted_, [&](const auto &each) { return now - each.second >= kBurst; });
  return counted_.try_emplace(remote, now).second ? HTTPReject::Failure::counted
                                                  : HTTPReject::Failure::alreadyCounted;
}

} // namespace fennick
