#include "FennickCore/Storage/MemoryCache.h"

#include <iterator>

namespace fennick {

std::size_t MemoryCache::cost(const std::string &key, const Data &data) {
  return kEntryBytes + key.size() + data->size();
}

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
  const std::size_t added = cost(key, data);
  if (added > mostBytes_)
    return;
  bytes_ += added;
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
  bytes_ -= cost(entry->first, entry->second);
  byKey_.erase(entry->first);
  entries_.erase(entry);
}

} // namespace fennick
