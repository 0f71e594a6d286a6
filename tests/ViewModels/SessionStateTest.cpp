#include <gtest/gtest.h>

#include <QSignalSpy>

#include "Support/SessionFixture.h"

using namespace Qt::StringLiterals;

namespace corvellan::test {
namespace {

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file{path};
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

// {"sub":"anna@corvellan.example"} as the middle part.
const QByteArray tokenOfAnna = "h.eyJzdWIiOiJhbm5hQGNvcnZlbGxhbi5leGFtcGxlIn0.s";

TEST(SessionStateTest, aStoredFontScaleOfZeroOrBelowReadsAsOneAndAHalf) {
    for (const double stored : {0.0, -1.0}) {
        SessionFixture fixture;
        fixture.preferences.setNumber(u"fontScale"_s, stored);
        EXPECT_EQ(fixture.session().fontScale(), 1.5);
    }
    SessionFixture fixture;
    fixture.preferences.setNumber(u"fontScale"_s, 2.0);
    EXPECT_EQ(fixture.session().fontScale(), 2.0);
}

TEST(SessionStateTest, autoStartIsOnWhenItsKeyIsAbsentOrNoBoolean) {
    {
        SessionFixture fixture;
        EXPECT_TRUE(fixture.session().autoStartOnCall());
    }
    {
        SessionFixture fixture;
        fixture.preferences.setString(u"autoStartOnCall"_s, u"no"_s);
        EXPECT_TRUE(fixture.session().autoStartOnCall());
    }
    SessionFixture fixture;
    fixture.preferences.setBoolean(u"autoStartOnCall"_s, false);
    EXPECT_FALSE(fixture.session().autoStartOnCall());
}

TEST(SessionStateTest, anUnknownCoachingModeReadsAsTheFirstAudience) {
    SessionFixture fixture;
    fixture.preferences.setString(u"coachingMode"_s, u"door_to_door"_s);
    EXPECT_EQ(fixture.session().coachingMode(), AudienceType::directSale);
}

TEST(SessionStateTest, aStoredCoachingModeIsTaken) {
    SessionFixture fixture;
    fixture.preferences.setString(u"coachingMode"_s, u"cold_call"_s);
    EXPECT_EQ(fixture.session().coachingMode(), AudienceType::coldCall);
}

TEST(SessionStateTest, anEmptyCustomUrlFallsBackToProduction) {
    SessionFixture fixture;
    fixture.preferences.setString(u"serverMode"_s, u"custom"_s);
    fixture.preferences.setString(u"customServerURL"_s, u""_s);
    EXPECT_EQ(fixture.session().serverURL(), u"wss://coach.test/ws"_s);
}

TEST(SessionStateTest, serverModesResolveToTheirUrls) {
    const auto production = u"wss://coach.test/ws"_s;
    using Model = SessionViewModel;
    EXPECT_EQ(Model::resolveURL(ServerMode::production, u"ws://x/ws"_s, production), production);
    EXPECT_EQ(Model::resolveURL(ServerMode::local, u"ws://x/ws"_s, production), u"ws://localhost:3001/ws"_s);
    EXPECT_EQ(Model::resolveURL(ServerMode::custom, u"ws://x/ws"_s, production), u"ws://x/ws"_s);
    EXPECT_EQ(Model::resolveURL(ServerMode::custom, std::nullopt, production), production);
}

TEST(SessionStateTest, anUnknownServerModeCountsAsProduction) {
    SessionFixture fixture;
    fixture.preferences.setString(u"serverMode"_s, u"Local"_s);
    EXPECT_EQ(fixture.session().serverURL(), u"wss://coach.test/ws"_s);
    EXPECT_EQ(fixture.session().authURL(), u"https://chat.test"_s);
}

TEST(SessionStateTest, theLoopbackAddressAnywhereInTheUrlCountsAsLocalAndLoggedIn) {
    SessionFixture fixture;
    auto& session = fixture.session();
    session.setServerURL(u"wss://coach.test/127.0.0.1/ws"_s);
    EXPECT_TRUE(session.isLocalServer());
    EXPECT_TRUE(session.isLoggedIn());
    EXPECT_FALSE(session.userEmail());
    session.setServerURL(u"wss://coach.test/ws"_s);
    EXPECT_FALSE(session.isLocalServer());
    EXPECT_FALSE(session.isLoggedIn());
    session.setUserEmail(u"anna@corvellan.example"_s);
    EXPECT_TRUE(session.isLoggedIn());
}

TEST(SessionStateTest, assigningTheSameActivityStillRunsTheCallbackButNotifiesNobody) {
    SessionFixture fixture;
    auto& session = fixture.session();
    std::vector<bool> calls;
    session.onSessionActiveChanged = [&](bool value) { calls.push_back(value); };
    QSignalSpy changes{&session, &SessionViewModel::isSessionActiveChanged};
    session.setIsSessionActive(false);
    session.setIsSessionActive(true);
    session.setIsSessionActive(true);
    EXPECT_EQ(calls, (std::vector{false, true, true}));
    EXPECT_EQ(changes.count(), 1);
    session.setIsSessionActive(false);
}

TEST(SessionStateTest, stealthAndLayoutRunTheirCallbacksAtEveryAssignment) {
    SessionFixture fixture;
    auto& session = fixture.session();
    std::vector<bool> stealth;
    QStringList modes;
    session.onStealthChanged = [&](bool value) { stealth.push_back(value); };
    session.onSessionModeChanged = [&](const QString& mode) { modes.append(mode); };
    session.setIsStealthEnabled(true);
    session.setIsStealthEnabled(true);
    session.setSessionMode(u"mini"_s);
    session.setSessionMode(u"mini"_s);
    EXPECT_EQ(stealth, (std::vector{true, true}));
    EXPECT_EQ(modes, (QStringList{u"mini"_s, u"mini"_s}));
}

TEST(SessionStateTest, theFontScaleIsStoredAndResizesThePanel) {
    SessionFixture fixture;
    auto& session = fixture.session();
    QStringList modes;
    session.onSessionModeChanged = [&](const QString& mode) { modes.append(mode); };
    session.setFontScale(2.0);
    EXPECT_EQ(fixture.preferences.number(u"fontScale"_s), 2.0);
    EXPECT_EQ(modes, (QStringList{u"full"_s}));
}

TEST(SessionStateTest, preferencesAreStoredAtEveryAssignmentAndNotAtConstruction) {
    SessionFixture fixture;
    auto& session = fixture.session();
    EXPECT_FALSE(fixture.preferences.boolean(u"autoStartOnCall"_s));
    EXPECT_FALSE(fixture.preferences.string(u"coachingMode"_s));
    EXPECT_FALSE(fixture.preferences.number(u"fontScale"_s));
    session.setAutoStartOnCall(true);
    session.setCoachingMode(AudienceType::discovery);
    EXPECT_EQ(fixture.preferences.boolean(u"autoStartOnCall"_s), true);
    EXPECT_EQ(fixture.preferences.string(u"coachingMode"_s), u"discovery"_s);
}

TEST(SessionStateTest, settingScreenShareToItsPresentValueWritesNothingAndStartsNothing) {
    SessionFixture fixture;
    auto& session = fixture.session();
    session.setIsScreenShareEnabled(false);
    settle();
    EXPECT_FALSE(fixture.preferences.boolean(u"screenShareEnabled"_s));
    EXPECT_TRUE(fixture.log.empty());
    session.toggleScreenShare();
    settle();
    EXPECT_EQ(fixture.preferences.boolean(u"screenShareEnabled"_s), true);
    EXPECT_EQ(fixture.log, (CallLog{"screenShare.stop"}));
}

TEST(SessionStateTest, equalValuesNotifyNobody) {
    SessionFixture fixture;
    auto& session = fixture.session();
    QSignalSpy changes{&session, &SessionViewModel::statusTextChanged};
    session.setStatusText(u"Ready"_s);
    session.setStatusText(u"Coaching"_s);
    EXPECT_EQ(changes.count(), 1);
}

TEST(SessionStateTest, aValidTokenFileNamesTheUser) {
    SessionFixture fixture;
    writeFile(fixture.tokenFilePath(), R"({"access_token":")" + tokenOfAnna + R"("})");
    EXPECT_EQ(fixture.session().userEmail(), u"anna@corvellan.example"_s);
}

TEST(SessionStateTest, anExpiredOrTornTokenFileIsSilent) {
    // 2026-03-02 10:00:00 UTC is 1772445600; 60 seconds ahead is already expired.
    for (const QByteArray& file :
         {R"({"access_token":")" + tokenOfAnna + R"(","expires_at":1772445660})", QByteArray{"{\"access_token\":"},
          QByteArray{"[]"}, QByteArray{}, QByteArray{R"({"access_token":7})"}}) {
        SessionFixture fixture;
        writeFile(fixture.tokenFilePath(), file);
        EXPECT_EQ(fixture.session().userEmail(), std::nullopt) << file.constData();
        EXPECT_EQ(fixture.session().errorMessage(), std::nullopt);
    }
    SessionFixture fixture;
    writeFile(fixture.tokenFilePath(), R"({"access_token":")" + tokenOfAnna + R"(","expires_at":1772445661})");
    EXPECT_TRUE(fixture.session().userEmail());
}

TEST(SessionStateTest, emailFromJwtReadsTheSubject) {
    EXPECT_EQ(SessionViewModel::emailFromJWT(QString::fromLatin1(tokenOfAnna)), u"anna@corvellan.example"_s);
    EXPECT_EQ(SessionViewModel::emailFromJWT(u"only.two"_s), std::nullopt);
    EXPECT_EQ(SessionViewModel::emailFromJWT(u"a.!!!!.c"_s), std::nullopt);
    EXPECT_EQ(SessionViewModel::emailFromJWT(u"a.e30.c"_s), std::nullopt);           // {}
    EXPECT_EQ(SessionViewModel::emailFromJWT(u"a.eyJzdWIiOjd9.c"_s), std::nullopt);  // {"sub":7}
}

TEST(SessionStateTest, theRestBaseComesFromTheSocketUrlByReplacement) {
    SessionFixture fixture;
    auto& session = fixture.session();
    session.setServerURL(u"ws://localhost:3001/ws"_s);
    EXPECT_EQ(session.restBaseURL(), u"http://localhost:3001"_s);
    session.setServerURL(u"wss://host.test/ws"_s);
    EXPECT_EQ(session.restBaseURL(), u"https://host.test"_s);
    // By replacement alone, wherever it stands.
    session.setServerURL(u"wss://host.test/ws/v2/ws?x=1"_s);
    EXPECT_EQ(session.restBaseURL(), u"https://host.test/v2?x=1"_s);
}

TEST(SessionStateTest, transcriptLinesAppendWithoutTouchingOthers) {
    TranscriptModel model;
    QSignalSpy inserted{&model, &QAbstractItemModel::rowsInserted};
    model.append({.id = QUuid::createUuid(), .source = TranscriptSource::mic, .text = u"one"_s, .timestamp = {}});
    model.append({.id = QUuid::createUuid(), .source = TranscriptSource::system, .text = u"two"_s, .timestamp = {}});
    EXPECT_EQ(inserted.count(), 2);
    EXPECT_EQ(model.data(model.index(1), TranscriptModel::textRole), u"two"_s);
    EXPECT_EQ(model.data(model.index(1), TranscriptModel::labelRole), u"THEM"_s);
    EXPECT_EQ(model.data(model.index(7), TranscriptModel::textRole), QVariant{});
    model.clear();
    EXPECT_EQ(model.rowCount(), 0);
}

}  // namespace
}  // namespace corvellan::test
