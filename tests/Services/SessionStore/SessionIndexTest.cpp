#include "Services/SessionStore/SessionIndex.h"

#include <algorithm>
#include <random>

#include "StoreFixture.h"

namespace corvellan {

namespace {

using test::moment;
using namespace Qt::StringLiterals;

StoredIndexEntry entry(const QString& company, std::int64_t seconds, InsertionNumber inserted) {
    StoredIndexEntry stored{.inserted = inserted};
    stored.entry.id = QUuid::createUuid();
    stored.entry.createdDate = moment(seconds);
    stored.entry.companyName = company;
    return stored;
}

QStringList companies(const SessionStoreProtocol::Index& index) {
    QStringList names;
    for (const auto& entry : *index)
        names << *entry.companyName;
    return names;
}

}  // namespace

TEST(SessionIndexTest, isEmptyAtFirst) {
    EXPECT_TRUE(SessionIndex{}.picture()->empty());
}

TEST(SessionIndexTest, putsEveryEntryWhereItsDateBelongs) {
    SessionIndex index;
    index.put(entry(u"b"_s, 2, 1));
    index.put(entry(u"d"_s, 4, 2));
    index.put(entry(u"a"_s, 1, 3));
    index.put(entry(u"c"_s, 3, 4));
    EXPECT_EQ(companies(index.picture()), (QStringList{u"d"_s, u"c"_s, u"b"_s, u"a"_s}));
}

TEST(SessionIndexTest, amongEqualDatesTheLastInsertionComesFirst) {
    SessionIndex index;
    index.put(entry(u"first"_s, 1, 1));
    index.put(entry(u"second"_s, 1, 2));
    index.put(entry(u"third"_s, 1, 3));
    EXPECT_EQ(companies(index.picture()), (QStringList{u"third"_s, u"second"_s, u"first"_s}));
}

TEST(SessionIndexTest, aKnownIdIsReplacedInItsPlace) {
    SessionIndex index;
    index.put(entry(u"first"_s, 1, 1));
    auto second = entry(u"second"_s, 1, 2);
    index.put(second);
    index.put(entry(u"third"_s, 1, 3));
    second.entry.companyName = u"changed"_s;
    second.inserted = 99;
    index.put(second);
    EXPECT_EQ(companies(index.picture()), (QStringList{u"third"_s, u"changed"_s, u"first"_s}));
}

TEST(SessionIndexTest, anEntryWhoseDateChangesMoves) {
    SessionIndex index;
    auto wanderer = entry(u"w"_s, 1, 1);
    index.put(wanderer);
    index.put(entry(u"a"_s, 2, 2));
    index.put(entry(u"b"_s, 3, 3));
    wanderer.entry.createdDate = moment(9);
    index.put(wanderer);
    EXPECT_EQ(companies(index.picture()), (QStringList{u"w"_s, u"b"_s, u"a"_s}));
    wanderer.entry.createdDate = moment(2);
    index.put(wanderer);
    EXPECT_EQ(companies(index.picture()), (QStringList{u"b"_s, u"a"_s, u"w"_s}));
}

TEST(SessionIndexTest, picturesThatWereHandedOutNeverChange) {
    SessionIndex index;
    index.put(entry(u"a"_s, 1, 1));
    const auto before = index.picture();
    index.put(entry(u"b"_s, 2, 2));
    EXPECT_EQ(companies(before), QStringList{u"a"_s});
    EXPECT_EQ(index.picture()->size(), 2U);
}

TEST(SessionIndexTest, anyOrderOfChangesGivesTheSortedEntries) {
    std::mt19937 random{7};
    SessionIndex index;
    std::vector<StoredIndexEntry> expected;
    for (InsertionNumber i = 0; i < 300; ++i) {
        const auto seconds = static_cast<std::int64_t>(random() % 20);
        if (!expected.empty() && random() % 3 == 0) {
            auto& changed = expected[random() % expected.size()];
            changed.entry.createdDate = moment(seconds);
            index.put(changed);
        } else {
            expected.push_back(entry(QString::number(i), seconds, i));
            index.put(expected.back());
        }
        std::ranges::sort(expected, std::greater{}, [](const StoredIndexEntry& stored) {
            return std::pair{stored.entry.createdDate, stored.inserted};
        });
        QStringList names;
        for (const auto& stored : expected)
            names << *stored.entry.companyName;
        ASSERT_EQ(companies(index.picture()), names) << "after change " << i;
    }
}

TEST(SessionIndexTest, takesALoadedListOverAsItIs) {
    SessionIndex index;
    index.assign({entry(u"c"_s, 3, 1), entry(u"b"_s, 2, 7), entry(u"a"_s, 2, 5)});
    index.put(entry(u"between"_s, 2, 6));
    EXPECT_EQ(companies(index.picture()), (QStringList{u"c"_s, u"b"_s, u"between"_s, u"a"_s}));
}

TEST(SessionIndexTest, puttingManyIsAsPuttingEach) {
    std::mt19937 random{7};
    const auto date = [&random] { return std::uniform_int_distribution<std::int64_t>{0, 30}(random); };
    InsertionNumber inserted = 0;
    SessionIndex each;
    SessionIndex all;
    for (const int count : {0, 1, 40, 1, 0, 25}) {
        std::vector<StoredIndexEntry> entries;
        for (int i = 0; i < count; ++i) {
            ++inserted;
            entries.push_back(entry(QString::number(inserted), date(), inserted));
        }
        for (const auto& stored : entries)
            each.put(stored);
        const auto before = all.picture();
        const auto known = before->size();
        all.putAll(entries);
        EXPECT_EQ(before->size(), known);
        EXPECT_EQ(companies(all.picture()), companies(each.picture()));
    }
}

TEST(SessionIndexTest, amongManyAKnownIdIsReplacedToo) {
    SessionIndex index;
    auto old = entry(u"old"_s, 1, 1);
    index.put(old);
    old.entry.companyName = u"changed"_s;
    const auto twice = entry(u"twice"_s, 3, 3);
    index.putAll({entry(u"new"_s, 2, 2), old, twice, twice});
    EXPECT_EQ(companies(index.picture()), (QStringList{u"twice"_s, u"new"_s, u"changed"_s}));
}

}  // namespace corvellan
