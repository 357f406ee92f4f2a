#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace fennick {

// A cache in memory with a limit in bytes that includes its own overhead. Evicts the least recently used
// data. Data that was handed out stays valid for its holder. One thread at a time.
class MemoryCache {
public:
  using Data = std::shared_ptr<const std::string>;
  static constexpr std::size_t kEntryBytes = 256; // overhead of an entry beside its key and data

  explicit MemoryCache(std::size_t mostBytes) : mostBytes_(mostBytes) {}

  // Returns null if there is no such entry.
  [[nodiscard]] Data get(const std::string &key);
  // Data that is larger than the limit is not kept.
  void put(const std::string &key, Data data);
  void clear();

private:
  using Entries = std::list<std::pair<std::string, Data>>;

  [[nodiscard]] static std::size_t cost(const std::string &key, const Data &data);
  void drop(Entries::iterator entry);

  const std::size_t mostBytes_;
  std::size_t bytes_ = 0;
  Entries entries_; // most recently used first
  std::unordered_map<std::string, Entries::iterator> byKey_;
};

} // namespace fennick
