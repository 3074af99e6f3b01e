#include "tools/data_importer/database_helper/index_witness.h"

#include <optional>
#include <unordered_set>

namespace data_importer {

namespace {

constexpr size_t kFileHeader = 100;
constexpr uint8_t kInteriorIndexPage = 0x02;
constexpr uint8_t kLeafIndexPage = 0x0a;

uint32_t BigEndian(std::string_view bytes, size_t at, size_t width) {
  uint32_t value = 0;
  for (size_t i = 0; i < width; ++i)
    value = (value << 8) | static_cast<uint8_t>(bytes[at + i]);
  return value;
}

// A variable-length integer of the file format at |*at| of |bytes|; |*at|
// moves past it. None when it runs past the end.
std::optional<uint64_t> Varint(std::string_view bytes, size_t* at) {
  uint64_t value = 0;
  for (int i = 0; i < 9; ++i) {
    if (*at >= bytes.size())
      return std::nullopt;
    const uint8_t byte = static_cast<uint8_t>(bytes[(*at)++]);
    if (i == 8)
      return (value << 8) | byte;
    value = (value << 7) | (byte & 0x7f);
    if (!(byte & 0x80))
      return value;
  }
  return std::nullopt;
}

// The number of bytes a value of serial type |type| takes; none for the
// two reserved types.
std::optional<uint64_t> ValueSize(uint64_t type) {
  static constexpr uint8_t kFixed[] = {0, 1, 2, 3, 4, 6, 8, 8, 0, 0};
  if (type < 10)
    return kFixed[type];
  if (type < 12)
    return std::nullopt;
  return (type - 12) / 2;
}

// The row id of an index entry: the record's last value, an integer. The
// record must be whole: its header and values fill it exactly.
std::optional<int64_t> EntryRowId(std::string_view record) {
  size_t at = 0;
  std::optional<uint64_t> header = Varint(record, &at);
  if (!header || *header < at || *header > record.size())
    return std::nullopt;
  uint64_t body = *header;
  uint64_t last_type = 0;
  uint64_t last_offset = 0;
  bool any = false;
  while (at < *header) {
    std::optional<uint64_t> type = Varint(record.substr(0, *header), &at);
    if (!type)
      return std::nullopt;
    std::optional<uint64_t> size = ValueSize(*type);
    if (!size || *size > record.size())
      return std::nullopt;
    last_type = *type;
    last_offset = body;
    body += *size;
    any = true;
  }
  if (!any || body != record.size())
    return std::nullopt;
  if (last_type == 8 || last_type == 9)
    return static_cast<int64_t>(last_type - 8);
  if (last_type < 1 || last_type > 6)
    return std::nullopt;
  const size_t width = *ValueSize(last_type);
  uint64_t value = static_cast<uint8_t>(record[last_offset]) & 0x80 ? ~uint64_t{0} : 0;
  for (size_t i = 0; i < width; ++i)
    value = (value << 8) | static_cast<uint8_t>(record[last_offset + i]);
  return static_cast<int64_t>(value);
}

class IndexReader {
 public:
  explicit IndexReader(std::string_view file) : m_file(file) {}

  IndexRowIds Read(uint32_t root) {
    IndexRowIds result;
    if (!ReadHeader()) {
      result.complete = false;
      return result;
    }
    MarkFreePages();
    std::vector<uint32_t> pending = {root};
    while (!pending.empty()) {
      const uint32_t page = pending.back();
      pending.pop_back();
      if (!ReadPage(page, &pending, &result))
        result.complete = false;
    }
    return result;
  }

 private:
  bool ReadHeader() {
    if (m_file.size() < kFileHeader ||
        m_file.substr(0, 16) != std::string_view("SQLite format 3\0", 16))
      return false;
    m_page_size = BigEndian(m_file, 16, 2);
    if (m_page_size == 1)
      m_page_size = 65536;
    if (m_page_size < 512 || (m_page_size & (m_page_size - 1)))
      return false;
    const uint32_t reserved = static_cast<uint8_t>(m_file[20]);
    if (reserved + 480 > m_page_size)
      return false;
    m_usable = m_page_size - reserved;
    m_pages = static_cast<uint32_t>(m_file.size() / m_page_size);
    return true;
  }

  std::optional<std::string_view> Page(uint32_t number) const {
    if (number == 0 || number > m_pages)
      return std::nullopt;
    return m_file.substr(size_t{number - 1} * m_page_size, m_usable);
  }

  // The pages on the free list (its trunks and their leaves) belong to no
  // tree; the list is followed as far as it reads.
  void MarkFreePages() {
    uint32_t trunk = BigEndian(m_file, 32, 4);
    while (trunk && m_visited.insert(trunk).second) {
      std::optional<std::string_view> page = Page(trunk);
      if (!page)
        return;
      const uint32_t leaves = BigEndian(*page, 4, 4);
      if (leaves > (page->size() - 8) / 4)
        return;
      for (uint32_t i = 0; i < leaves; ++i)
        m_visited.insert(BigEndian(*page, 8 + 4 * size_t{i}, 4));
      trunk = BigEndian(*page, 0, 4);
    }
  }

  // Reads the entries of |number|, queueing its children. False when the
  // page or one of its cells is not what an index page holds.
  bool ReadPage(uint32_t number, std::vector<uint32_t>* pending, IndexRowIds* result) {
    std::optional<std::string_view> page = Page(number);
    if (!page || !m_visited.insert(number).second)
      return false;
    const size_t header = number == 1 ? kFileHeader : 0;
    const uint8_t type = static_cast<uint8_t>((*page)[header]);
    if (type != kInteriorIndexPage && type != kLeafIndexPage)
      return false;
    const bool interior = type == kInteriorIndexPage;
    const size_t cells_at = header + (interior ? 12 : 8);
    const uint32_t cells = BigEndian(*page, header + 3, 2);
    if (cells_at + 2 * size_t{cells} > page->size())
      return false;
    if (interior)
      pending->push_back(BigEndian(*page, header + 8, 4));
    // The largest entry an index page holds without overflow.
    const size_t max_local = (size_t{m_usable} - 12) * 64 / 255 - 23;
    bool whole = true;
    for (uint32_t i = 0; i < cells; ++i) {
      size_t at = BigEndian(*page, cells_at + 2 * size_t{i}, 2);
      if (at < cells_at + 2 * size_t{cells} || at + (interior ? 4 : 0) >= page->size()) {
        whole = false;
        continue;
      }
      if (interior) {
        pending->push_back(BigEndian(*page, at, 4));
        at += 4;
      }
      std::optional<uint64_t> size = Varint(*page, &at);
      if (!size || *size > max_local || at + *size > page->size()) {
        // The entry goes on in overflow pages (or is damaged): its row id,
        // the record's last value, is not read.
        whole = false;
        continue;
      }
      std::optional<int64_t> rowid = EntryRowId(page->substr(at, *size));
      if (rowid)
        result->rowids.push_back(*rowid);
      else
        whole = false;
    }
    return whole;
  }

  std::string_view m_file;
  uint32_t m_page_size = 0;
  uint32_t m_usable = 0;
  uint32_t m_pages = 0;
  // Pages met so far and the free ones: a page is read once at most.
  std::unordered_set<uint32_t> m_visited;
};

}  // namespace

IndexRowIds ReadIndexRowIds(std::string_view file, uint32_t root) {
  return IndexReader(file).Read(root);
}

}  // namespace data_importer
