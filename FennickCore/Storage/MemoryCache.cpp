#include "FennickCore/Storage/MemoryCache.h"

#include <iterator>

namespace fennick {

MemoryCache::Data MemoryCache::get(const std::string &key) {
  const auto found = byKey_.find(key);
  if (found == byKey_.end())
    return nullptr;
  entries_.splice(entries_.begin(), entries_, found->second);
  return found->second->second;
}

void MemoryCache::put(const std::string &key, Data data) {
  if (const auto found = byKey_.find(key); found != byKey_.end())
    drop(found->second);
  if (data->size() > mostBytes_)
    return;
  bytes_ += data->size();
  entries_.emplace_front(key, std::move(data));
  byKey_[key] = entries_.begin();
  while (bytes_ > mostBytes_)
    drop(std::prev(entries_.end()));
}

void MemoryCache::clear() {
  byKey_.clear();
  entries_.clear();
  bytes_ = 0;
}

void MemoryCache::drop(Entries::iterator entry) {
  bytes_ -= entry->second->size();
  byKey_.erase(entry->first);
  entries_.erase(entry);
}

} // namespace fennick
