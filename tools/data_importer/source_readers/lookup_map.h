#ifndef TOOLS_DATA_IMPORTER_SOURCE_READERS_LOOKUP_MAP_H_
#define TOOLS_DATA_IMPORTER_SOURCE_READERS_LOOKUP_MAP_H_

#include <functional>
#include <memory_resource>
#include <optional>
#include <unordered_map>
#include <utility>

namespace data_importer {

// A hash map for a reader's lookups (old id -> what it made of it): filled
// row by row while the model's records are made, emptied when the export
// ends, and never walked in an order that matters.
//
// Its entries live in blocks of their own instead of between the records.
// An ordinary map's nodes would be allocated one per row among the
// records that stay, and freeing them would leave a hole per row in the
// heap; every later small allocation (the statement parsing of the whole
// build) would then be served from holes spread over hundreds of megabytes,
// one cache miss each. Emptied, this map gives back a few large blocks.
template <typename Key, typename Value, typename Hash = std::hash<Key>>
class LookupMap {
 public:
  using Map = std::pmr::unordered_map<Key, Value, Hash>;
  using iterator = typename Map::iterator;
  using const_iterator = typename Map::const_iterator;

  LookupMap() { m_map.emplace(&m_memory); }
  LookupMap(const LookupMap&) = delete;
  LookupMap& operator=(const LookupMap&) = delete;

  Value& operator[](const Key& key) { return (*m_map)[key]; }
  template <typename... Args>
  std::pair<iterator, bool> emplace(Args&&... args) {
    return m_map->emplace(std::forward<Args>(args)...);
  }
  iterator find(const Key& key) { return m_map->find(key); }
  const_iterator find(const Key& key) const { return m_map->find(key); }
  iterator begin() { return m_map->begin(); }
  iterator end() { return m_map->end(); }
  const_iterator begin() const { return m_map->begin(); }
  const_iterator end() const { return m_map->end(); }
  size_t size() const { return m_map->size(); }
  bool empty() const { return m_map->empty(); }

  // Destroys every entry and gives the blocks back.
  void clear() {
    m_map.reset();
    m_memory.release();
    m_map.emplace(&m_memory);
  }

 private:
  std::pmr::monotonic_buffer_resource m_memory;
  std::optional<Map> m_map;  // declared after the memory it lives in
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_SOURCE_READERS_LOOKUP_MAP_H_
