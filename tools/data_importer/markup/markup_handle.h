#ifndef TOOLS_DATA_IMPORTER_MARKUP_MARKUP_HANDLE_H_
#define TOOLS_DATA_IMPORTER_MARKUP_MARKUP_HANDLE_H_

namespace data_importer {

namespace markup {

class MarkupNode;

// A counted reference to a MarkupNode. Copying a handle adds one to the
// node's count, dropping it takes one away; the node and everything it owns
// are freed when the count reaches zero. A handle is never empty: a default
// handle, and every failed lookup, refers to the shared null node, which is
// never freed and never changes, so calls can be chained without checks.
// Counts are plain integers: a tree belongs to one thread at a time.
class MarkupHandle {
 public:
  // The null node.
  MarkupHandle();
  // Takes a counted reference to |node| (the null node when |node| is null).
  explicit MarkupHandle(MarkupNode* node);
  MarkupHandle(const MarkupHandle& other);
  MarkupHandle(MarkupHandle&& other) noexcept;
  MarkupHandle& operator=(const MarkupHandle& other);
  MarkupHandle& operator=(MarkupHandle&& other) noexcept;
  ~MarkupHandle();

  MarkupNode* get() const { return m_node; }
  MarkupNode* operator->() const { return m_node; }
  MarkupNode& operator*() const { return *m_node; }

  // True for the shared null node.
  bool IsNull() const;

  bool operator==(const MarkupHandle& other) const { return m_node == other.m_node; }
  bool operator!=(const MarkupHandle& other) const { return m_node != other.m_node; }

 private:
  void Release();

  MarkupNode* m_node;
};

}  // namespace markup

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_MARKUP_MARKUP_HANDLE_H_
