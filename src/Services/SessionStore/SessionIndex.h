#pragma once

#include <span>
#include <vector>

#include "SessionDatabase.h"

namespace corvellan {

/// The resident index behind the live query, newest first; among equal dates the last insertion
/// comes first. Pictures that were handed out never change: a change makes a new one, in one pass
/// over the entries. One thread at a time, but for the pictures.
class SessionIndex {
public:
    /// \param entries newest first, as `SessionDatabase::readIndex` gives them.
    void assign(std::vector<StoredIndexEntry> entries);

    /// Adds the entry, or replaces the one of the same id, which then keeps its own insertion number.
    void put(const StoredIndexEntry& stored);

    /// As `put` for each, in order, in one pass over the entries as long as they are new.
    void putAll(std::vector<StoredIndexEntry> stored);

    [[nodiscard]] SessionStoreProtocol::Index picture() const { return m_entries; }

private:
    SessionStoreProtocol::Index m_entries = std::make_shared<const std::vector<SessionIndexEntry>>();
    std::vector<InsertionNumber> m_inserted;  ///< Of the entries, in the same order.
};

}  // namespace corvellan
