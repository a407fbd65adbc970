#pragma once

#include "jet/store/index_tree.h"

#include <optional>

namespace jet
{

/// A position on or between the entries of an index, which survives changes of the tree.
class IndexCursor
{
public:
    explicit IndexCursor(const IndexTree &tree) : m_tree(tree) {}

    bool moveFirst() { return moveToEdge(false); }
    bool moveLast() { return moveToEdge(true); }
    /// Moves to the first entry not less than the given bytes.
    bool seek(ByteView entry);
    bool next() { return step(true); }
    bool previous() { return step(false); }

    /// False before the first move and after one that found no entry.
    bool isValid() const { return m_valid; }
    RowPointer row() const;
    /// Precondition: isValid(). True for an entry of this key.
    bool hasKey(ByteView key) const;
    const Bytes &entry() const { return m_entry; }

private:
    bool moveToEdge(bool last);
    bool step(bool forward);
    void load(PageNo page);
    bool settle(bool forward);

    IndexTree m_tree;
    std::optional<IndexPage> m_leaf;
    std::size_t m_index = 0; ///< settle() accepts one past the end
    std::uint64_t m_version = 0;
    Bytes m_entry;
    Bytes m_before; ///< the entry before the last step
    bool m_valid = false;
};

} // namespace jet
