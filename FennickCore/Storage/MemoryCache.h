#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace fennick {

// Data kept in memory under a key, up to a limit in bytes, what keeping it takes included: what was not asked
// for the longest goes first.
// What is handed out stays valid for whoever holds it. One thread at a time.
class MemoryCache {
public:
  using Data = std::shared_ptr<const std::string>;
  static constexpr std::size_t kEntryBytes = 256; // counted for an entry beside its key and its data

  explicit MemoryCache(std::size_t mostBytes) : mostBytes_(mostBytes) {}

  // Nothing (null) when there is none.
  [[nodiscard]] Data get(const std::string &key);
  // What is beyond the whole limit is not kept.
  void put(const std::string &key, Data data);
  void clear();

private:
  using Entries = std::list<std::pair<std::string, Data>>;

  [[nodiscard]] static std::size_t cost(const std::string &key, const Data &data);
  void drop(Entries::iterator entry);

  const std::size_t mostBytes_;
  std::size_t bytes_ = 0;
  Entries entries_; // latest used first
  std::unordered_map<std::string, Entries::iterator> byKey_;
};

} // namespace fennick
