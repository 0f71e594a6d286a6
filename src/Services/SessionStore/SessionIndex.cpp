#include "SessionIndex.h"

#include <algorithm>
#include <functional>
#include <QSet>
#include <utility>

namespace corvellan {

void SessionIndex::assign(std::vector<StoredIndexEntry> entries) {
    auto picture = std::make_shared<std::vector<SessionIndexEntry>>();
    picture->reserve(entries.size());
    m_inserted.clear();
    m_inserted.reserve(entries.size());
    for (auto& stored : entries) {
        picture->push_back(std::move(stored.entry));
        m_inserted.push_back(stored.inserted);
    }
    m_entries = std::move(picture);
}

void SessionIndex::put(const StoredIndexEntry& stored) {
    const auto& old = *m_entries;
    const auto previous = std::ranges::find(old, stored.entry.id, &SessionIndexEntry::id) - old.begin();
    const bool isKnown = std::cmp_less(previous, old.size());
    const auto inserted = isKnown ? m_inserted[static_cast<std::size_t>(previous)] : stored.inserted;

    // The first entry that is older than the new one.
    const auto isNewer = [&](std::size_t index) {
        return std::pair{old[index].createdDate, m_inserted[index]} > std::pair{stored.entry.createdDate, inserted};
    };
    std::size_t place = 0;
    for (std::size_t count = old.size(); count > 0;) {
        const auto half = count / 2;
        if (isNewer(place + half)) {
            place += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }

    auto picture = std::make_shared<std::vector<SessionIndexEntry>>();
    picture->reserve(old.size() + 1);
    std::vector<InsertionNumber> numbers;
    numbers.reserve(old.size() + 1);
    const auto copyRange = [&](std::size_t from, std::size_t to) {
        const auto begin = static_cast<std::ptrdiff_t>(from);
        const auto end = static_cast<std::ptrdiff_t>(to);
        picture->insert(picture->end(), old.begin() + begin, old.begin() + end);
        numbers.insert(numbers.end(), m_inserted.begin() + begin, m_inserted.begin() + end);
    };
    const auto copyWithoutPrevious = [&](std::size_t from, std::size_t to) {
        const auto gap = static_cast<std::size_t>(previous);
        if (isKnown && gap >= from && gap < to) {
            copyRange(from, gap);
            copyRange(gap + 1, to);
        } else {
            copyRange(from, to);
        }
    };
    copyWithoutPrevious(0, place);
    picture->push_back(stored.entry);
    numbers.push_back(inserted);
    copyWithoutPrevious(place, old.size());
    m_entries = std::move(picture);
    m_inserted = std::move(numbers);
}

void SessionIndex::putAll(std::vector<StoredIndexEntry> stored) {
    QSet<QUuid> ids;
    for (const auto& each : stored)
        ids.insert(each.entry.id);
    const bool isAnyKnown = std::ranges::any_of(*m_entries, [&](const auto& entry) { return ids.contains(entry.id); });
    if (isAnyKnown || std::cmp_less(ids.size(), stored.size())) {
        for (const auto& each : stored)
            put(each);
        return;
    }
    const auto date = [](const StoredIndexEntry& each) { return std::pair{each.entry.createdDate, each.inserted}; };
    std::ranges::sort(stored, std::greater{}, date);

    const auto& old = *m_entries;
    auto picture = std::make_shared<std::vector<SessionIndexEntry>>();
    picture->reserve(old.size() + stored.size());
    std::vector<InsertionNumber> numbers;
    numbers.reserve(old.size() + stored.size());
    auto next = stored.begin();
    const auto take = [&](SessionIndexEntry entry, InsertionNumber number) {
        picture->push_back(std::move(entry));
        numbers.push_back(number);
    };
    for (std::size_t i = 0; i < old.size(); ++i) {
        for (; next != stored.end() && date(*next) > std::pair{old[i].createdDate, m_inserted[i]}; ++next)
            take(std::move(next->entry), next->inserted);
        take(old[i], m_inserted[i]);
    }
    for (; next != stored.end(); ++next)
        take(std::move(next->entry), next->inserted);
    m_entries = std::move(picture);
    m_inserted = std::move(numbers);
}

}  // namespace corvellan
