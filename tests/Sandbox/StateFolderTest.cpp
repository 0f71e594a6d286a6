#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "SignedInFixture.h"

namespace corvellan::test {

namespace {

/// A sandbox that ends and starts again on the same folder.
class StateFolderTest : public SignedInFixture {
protected:
    // The folder goes before the sandbox otherwise.
    void TearDown() override { box.reset(); }

    void serve(QStringList users = {u"anna@fernhill.example"_s, u"ben@fernhill.example"_s}) {
        box.reset();
        lines.clear();
        start({.stateFolder = path(), .accounts = {.users = std::move(users)}});
    }
    [[nodiscard]] QString path(const QString& name = {}) const {
        return folder.filePath(u"state"_s) + (name.isEmpty() ? name : u'/' + name);
    }
    [[nodiscard]] QString callFile(const QString& call) const { return path(u"calls/%1.json"_s.arg(call)); }
    [[nodiscard]] QStringList filesIn(const QString& name = {}) const {
        return QDir{path(name)}.entryList(QDir::Files, QDir::Name);
    }
    /// What a power cut leaves of a file.
    static void tear(const QString& file) { ASSERT_TRUE(QFile::resize(file, QFileInfo{file}.size() / 2)); }
    int statusWith(const QString& token) const {
        return rest({.path = "/calls", .host = "127.0.0.2", .token = token}).status;
    }

    QTemporaryDir folder;
};

constexpr auto ownersBits = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
constexpr auto othersBits = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ExeGroup |
                            QFileDevice::ReadOther | QFileDevice::WriteOther | QFileDevice::ExeOther;

}  // namespace

TEST_F(StateFolderTest, aSignInOutlivesTheSandbox) {
    serve();
    const QString kept = tokenFor();
    const QString revoked = tokenFor(u"ben@fernhill.example"_s);
    box->accounts().revoke(revoked);
    serve();
    EXPECT_EQ(statusWith(kept), 200);
    EXPECT_EQ(statusWith(revoked), 401);
    EXPECT_TRUE(logs(u"1 sign-ins are taken up"_s));
}

TEST_F(StateFolderTest, aRefreshTokenOutlivesTheSandboxAndIsSpentOnce) {
    serve();
    std::ignore = tokenFor();
    const QString first = box->accounts().state().grants.begin()->refreshToken;
    serve();
    const auto renewed = box->accounts().refresh(first, u"corvellan-tui"_s);
    ASSERT_TRUE(renewed);
    serve();
    EXPECT_FALSE(box->accounts().refresh(first, u"corvellan-tui"_s));
    EXPECT_TRUE(box->accounts().refresh(*renewed->refreshToken, u"corvellan-tui"_s));
}

TEST_F(StateFolderTest, callsOutliveTheSandboxWithWhatWasSaidOfThem) {
    serve();
    const QByteArray call = holdCall().toLatin1();
    clock.advance(std::chrono::seconds{1});
    const QByteArray other = holdCall().toLatin1();
    rest({.method = "POST", .path = "/calls/" + call + "/feedback", .body = R"({"rating":-1,"note":"no"})"});
    rest({.method = "POST", .path = "/calls/" + call + "/outcome", .body = R"({"outcome":"demo_booked"})"});
    const auto before = rest({.path = "/calls"}).body;
    const auto whole = rest({.path = "/calls/" + call}).body;
    serve();
    EXPECT_EQ(rest({.path = "/calls"}).body, before);
    EXPECT_EQ(rest({.path = "/calls/" + call}).body, whole);
    EXPECT_EQ(json(rest({.path = "/calls/" + other}))[u"feedback"_s].toArray().size(), 0);
    // And it can be spoken of further.
    EXPECT_EQ(rest({.method = "POST", .path = "/calls/" + call + "/feedback", .body = R"({"rating":1})"}).status, 200);
    serve();
    EXPECT_EQ(json(rest({.path = "/calls/" + call}))[u"feedback"_s].toArray().size(), 2);
}

TEST_F(StateFolderTest, aCallThatIsCutShortByTheEndIsKept) {
    serve();
    WireClient client{coachUrl()};
    client.send(R"({"type":"start_session","company":"Acme","sim_mode":false,"audience":"direct_sale"})");
    client.send(R"({"type":"transcript","source":"system","text":"Planning by hand is a problem."})");
    ASSERT_EQ(client.next(u"coaching"_s)[u"type"_s].toString(), u"coaching"_s);
    serve();
    ASSERT_EQ(box->calls().calls().size(), 1U);
    EXPECT_EQ(box->calls().calls().front().start.company, u"Acme"_s);
    EXPECT_FALSE(box->calls().calls().front().hasSummary);
    EXPECT_TRUE(box->calls().calls().front().endedAt);
}

TEST_F(StateFolderTest, theExtensionsCallOutlivesTheSandbox) {
    serve();
    rest({.method = "POST", .path = "/ext/sensor", .body = R"({"event":"call_start","company_name":"Northwind"})"});
    const auto before = rest({.path = "/ext/sensor"}).body;
    serve();
    EXPECT_EQ(rest({.path = "/ext/sensor"}).body, before);
    clock.advance(std::chrono::seconds{30});
    WireClient listener{coachUrl()};
    ASSERT_TRUE(spinUntil([&] { return logs(u"#1 connected"_s); }));
    rest({.method = "POST", .path = "/ext/sensor", .body = R"({"event":"call_end"})"});
    EXPECT_EQ(listener.next()[u"duration_secs"_s].toInt(), 30);
}

TEST_F(StateFolderTest, everyFileIsForItsOwnerAlone) {
    serve();
    std::ignore = tokenFor();
    const QString call = holdCall();
    rest({.method = "POST", .path = "/ext/sensor", .body = R"({"event":"context"})"});
    for (const auto& file : {path(u"accounts.json"_s), path(u"extension.json"_s), callFile(call)}) {
        EXPECT_EQ(QFile::permissions(file) & ownersBits, ownersBits) << file.toStdString();
        EXPECT_FALSE(QFile::permissions(file) & othersBits) << file.toStdString();
    }
    EXPECT_FALSE(QFile::permissions(path()) & othersBits);
    EXPECT_FALSE(QFile::permissions(path(u"calls"_s)) & othersBits);
}

TEST_F(StateFolderTest, aFolderThatWasThereKeepsItsMode) {
    ASSERT_TRUE(QDir{}.mkpath(path()));
    ASSERT_TRUE(QFile::setPermissions(path(), ownersBits | QFileDevice::ExeOwner | QFileDevice::ExeGroup));
    serve();
    EXPECT_TRUE(QFile::permissions(path()) & QFileDevice::ExeGroup);
}

TEST_F(StateFolderTest, tornSignInsCostNothingElse) {
    serve();
    const QString token = tokenFor();
    const QString call = holdCall();
    box.reset();
    tear(path(u"accounts.json"_s));
    serve();
    EXPECT_TRUE(logs(u"accounts.json does not read (at byte "_s));
    EXPECT_TRUE(logs(u"put aside as accounts.json.broken, the rest is taken up"_s));
    EXPECT_TRUE(filesIn().contains(u"accounts.json.broken"_s));
    EXPECT_EQ(statusWith(token), 401);
    EXPECT_EQ(box->calls().calls().size(), 1U);
    // Signing in works again, and what was put aside stays.
    EXPECT_EQ(statusWith(tokenFor()), 200);
    box.reset();
    tear(path(u"accounts.json"_s));
    serve();
    EXPECT_TRUE(filesIn().contains(u"accounts.json.broken"_s));
    EXPECT_TRUE(filesIn().contains(u"accounts.json.broken-2"_s));
}

TEST_F(StateFolderTest, aTornCallCostsItselfAlone) {
    serve();
    const QString token = tokenFor();
    const QString torn = holdCall();
    const QString whole = holdCall();
    box.reset();
    tear(callFile(torn));
    serve();
    ASSERT_EQ(box->calls().calls().size(), 1U);
    EXPECT_EQ(box->calls().calls().front().callId, whole);
    EXPECT_EQ(statusWith(token), 200);
    const auto files = filesIn(u"calls"_s);
    EXPECT_EQ(files.size(), 2);
    EXPECT_TRUE(files.contains(torn + u".json.broken"_s));
}

TEST_F(StateFolderTest, aCallUnderAForeignNameIsPutAside) {
    serve();
    const QString call = holdCall();
    box.reset();
    ASSERT_TRUE(QFile::copy(callFile(call), path(u"calls/copy.json"_s)));
    serve();
    EXPECT_EQ(box->calls().calls().size(), 1U);
    EXPECT_TRUE(logs(u"calls/copy.json does not read (it holds another call)"_s));
}

TEST_F(StateFolderTest, aSignInOfSomebodyWhoIsNoLongerNamedIsDropped) {
    serve();
    const QString anna = tokenFor();
    const QString ben = tokenFor(u"ben@fernhill.example"_s);
    serve({u"ben@fernhill.example"_s});
    EXPECT_EQ(statusWith(anna), 401);
    EXPECT_EQ(statusWith(ben), 200);
    EXPECT_TRUE(logs(u"1 sign-ins of people who are no longer named are dropped"_s));
}

TEST_F(StateFolderTest, oneFolderHasOneSandbox) {
    serve();
    const auto second =
        sandbox::Sandbox::start({.coachPort = 0, .chatPort = 0, .providerPort = 0, .stateFolder = path()}, clock, log);
    ASSERT_FALSE(second);
    EXPECT_EQ(second.error().errorDescription(), u"Another sandbox keeps its state in %1"_s.arg(path()));
}

TEST_F(StateFolderTest, aFolderThatCannotBeMadeIsAnError) {
    QFile file{path()};
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const auto started =
        sandbox::Sandbox::start({.coachPort = 0, .chatPort = 0, .providerPort = 0, .stateFolder = path()}, clock, log);
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().errorDescription(), u"Cannot make the folder %1 for the state"_s.arg(path()));
}

TEST_F(StateFolderTest, saysWhatItCannotWrite) {
    serve();
    ASSERT_TRUE(QDir{path(u"calls"_s)}.removeRecursively());
    const QString call = holdCall();
    EXPECT_TRUE(logs(u"cannot write calls/%1.json: "_s.arg(call)));
    // It goes on without.
    EXPECT_EQ(rest({.path = "/calls/" + call.toLatin1()}).status, 200);
}

TEST_F(StateFolderTest, withoutAFolderNothingIsWritten) {
    start();
    std::ignore = tokenFor();
    std::ignore = holdCall();
    EXPECT_FALSE(QFileInfo::exists(path()));
    EXPECT_FALSE(logs(u"  state "_s));
}

TEST_F(StateFolderTest, noSecretReachesTheLog) {
    serve();
    const QString token = tokenFor();
    const QString refresh = box->accounts().state().grants.begin()->refreshToken;
    serve();
    EXPECT_FALSE(logs(token));
    EXPECT_FALSE(logs(refresh));
}

}  // namespace corvellan::test
