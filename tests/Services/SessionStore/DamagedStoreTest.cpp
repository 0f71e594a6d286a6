#include "Services/SessionStore/DamagedStore.h"

#include "StoreFixture.h"

namespace corvellan {

namespace {

using namespace Qt::StringLiterals;

// 2026-03-02 10:00:00 UTC.
constexpr WallTime now{std::chrono::milliseconds{1'772'445'600'000}};

class DamagedStoreTest : public test::StoreFixture {
protected:
    void SetUp() override { makeFolder(); }
    [[nodiscard]] QString beside(const QString& name) const { return file(u"data/"_s + name); }
};

}  // namespace

TEST_F(DamagedStoreTest, theNameTellsTheTimeInUtc) {
    writeFile(path(), "x");
    EXPECT_EQ(setAside(path(), now), beside(u"sessions.damaged-20260302-100000.sqlite"_s));
    EXPECT_EQ(filesBesideStore(), QStringList{u"sessions.damaged-20260302-100000.sqlite"_s});
    EXPECT_EQ(bytesOf(beside(u"sessions.damaged-20260302-100000.sqlite"_s)), "x");
}

TEST_F(DamagedStoreTest, theLogAndTheSharedMemoryGoAlong) {
    writeFile(path(), "main");
    writeFile(path() + u"-wal"_s, "log");
    writeFile(path() + u"-shm"_s, "memory");
    const auto kept = setAside(path(), now);
    ASSERT_TRUE(kept);
    EXPECT_EQ(bytesOf(*kept), "main");
    EXPECT_EQ(bytesOf(*kept + u"-wal"_s), "log");
    EXPECT_EQ(bytesOf(*kept + u"-shm"_s), "memory");
    EXPECT_EQ(filesBesideStore().size(), 3);
}

TEST_F(DamagedStoreTest, neverOverwritesWhatWasSetAsideBefore) {
    writeFile(beside(u"sessions.damaged-20260302-100000.sqlite"_s), "first");
    writeFile(beside(u"sessions.damaged-20260302-100000-2.sqlite-wal"_s), "second's log");
    writeFile(path(), "third");
    EXPECT_EQ(setAside(path(), now), beside(u"sessions.damaged-20260302-100000-3.sqlite"_s));
    EXPECT_EQ(bytesOf(beside(u"sessions.damaged-20260302-100000.sqlite"_s)), "first");
    EXPECT_EQ(bytesOf(beside(u"sessions.damaged-20260302-100000-2.sqlite-wal"_s)), "second's log");
    EXPECT_EQ(bytesOf(beside(u"sessions.damaged-20260302-100000-3.sqlite"_s)), "third");
}

}  // namespace corvellan
