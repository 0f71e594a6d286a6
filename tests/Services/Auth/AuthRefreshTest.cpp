#include "AuthServiceFixture.h"

namespace corvellan::test {

namespace {

/// `validToken`, `invalidateToken` and `logout`.
class AuthRefreshTest : public AuthServiceFixture {
protected:
    using Token = std::optional<QString>;

    struct Asking {
        std::optional<Token> result;
    };
    std::shared_ptr<Asking> beginValidToken() {
        const auto asking = std::make_shared<Asking>();
        keep(service->validToken(server.baseUrl()), asking);
        return asking;
    }
    static std::string end(const std::shared_ptr<Asking>& asking) {
        if (!spinUntil([&] { return asking->result.has_value(); }))
            return "goes on";
        return asking->result->value_or(u"(none)"_s).toStdString();
    }
    using AuthServiceFixture::end;
    [[nodiscard]] bool asks(std::size_t requests) {
        return spinUntil([&] { return server.count() >= requests; });
    }

    static inline const QByteArray twinTokens{R"({"access_token":"twin","refresh_token":"twins","expires_in":7200})"};

private:
    static QCoro::Task<void> keep(QCoro::Task<Token> task, std::shared_ptr<Asking> asking) {
        asking->result.emplace(co_await task);
    }
};

}  // namespace

TEST_P(AuthRefreshTest, hasNothingToGiveWithoutMemoryAndFile) {
    EXPECT_EQ(validToken(), "(none)");
    EXPECT_EQ(token(), "(none)");
    EXPECT_FALSE(isAuthenticated());
    EXPECT_EQ(server.count(), 0U);
    EXPECT_TRUE(desktop.browser.pages.empty());
}

TEST_P(AuthRefreshTest, takesAValidFileIntoMemory) {
    store(u"kept"_s, {}, 61);
    // Nothing is read before it is asked for.
    EXPECT_EQ(token(), "(none)");
    EXPECT_EQ(validToken(), "kept");
    ASSERT_TRUE(QFile::remove(path()));
    EXPECT_EQ(validToken(), "kept");
    EXPECT_EQ(token(), "kept");
    EXPECT_EQ(server.count(), 0U);
}

TEST_P(AuthRefreshTest, refreshesSixtySecondsBeforeTheEnd) {
    store(u"old"_s, u"refresh"_s, 61);
    EXPECT_EQ(validToken(), "old");
    server.answer(goodTokens);
    pass(1s);
    EXPECT_FALSE(isAuthenticated());
    EXPECT_EQ(token(), "old");
    EXPECT_EQ(validToken(), "new");
    EXPECT_TRUE(isAuthenticated());
    EXPECT_EQ(server.lastBody(), "grant_type=refresh_token&client_id=corvellan-tui&refresh_token=refresh");
    EXPECT_EQ(stored(), fileOf("new", "next", 3601));
    EXPECT_EQ(logs.infos(), QStringList{u"Token expired, auto-refreshing for API call"_s});
}

TEST_P(AuthRefreshTest, keepsTheOldRefreshTokenWhereTheAnswerHasNone) {
    store(u"old"_s, u"refresh"_s, 0);
    server.answer(R"({"access_token":"new","expires_in":100})");
    EXPECT_EQ(validToken(), "new");
    EXPECT_EQ(stored(), fileOf("new", "refresh", 100));
    pass(50s);
    server.answer(goodTokens);
    EXPECT_EQ(validToken(), "new");
    EXPECT_EQ(server.count(), 2U);
    EXPECT_TRUE(server.lastBody().endsWith("&refresh_token=refresh"));
}

TEST_P(AuthRefreshTest, keepsAnEmptyRefreshTokenThatTheAnswerHas) {
    store(u"old"_s, u"refresh"_s, 0);
    server.answer(R"({"access_token":"new","refresh_token":"","expires_in":100})");
    EXPECT_EQ(validToken(), "new");
    EXPECT_EQ(stored(), fileOf("new", "", 100));
}

TEST_P(AuthRefreshTest, aFileThatIsNewerIsTaken) {
    store(u"old"_s, u"refresh"_s, 61);
    EXPECT_EQ(validToken(), "old");
    pass(1s);
    store(u"newer"_s, u"refresh"_s, 100);
    EXPECT_EQ(validToken(), "newer");
    EXPECT_EQ(server.count(), 0U);
}

TEST_P(AuthRefreshTest, takesTheRefreshTokenOfTheFileWhereMemoryHasNone) {
    store(u"memory"_s, {}, 61);
    EXPECT_EQ(validToken(), "memory");
    pass(1s);
    store(u"file"_s, u"of-the-file"_s, 0);
    server.answer(goodTokens);
    EXPECT_EQ(validToken(), "new");
    EXPECT_TRUE(server.lastBody().endsWith("&refresh_token=of-the-file"));
}

TEST_P(AuthRefreshTest, takesTheRefreshTokenOfMemoryFirst) {
    store(u"memory"_s, u"of-memory"_s, 61);
    EXPECT_EQ(validToken(), "memory");
    pass(1s);
    store(u"file"_s, u"of-the-file"_s, 0);
    server.answer("no", "400 Bad Request");
    EXPECT_EQ(validToken(), "memory");
    EXPECT_TRUE(server.lastBody().endsWith("&refresh_token=of-memory"));
}

TEST_P(AuthRefreshTest, givesTheStaleTokenWhereThereIsNoRefreshToken) {
    store(u"stale"_s, {}, 0);
    EXPECT_EQ(validToken(), "stale");
    EXPECT_EQ(server.count(), 0U);
    EXPECT_TRUE(logs.errors().isEmpty());
}

TEST_P(AuthRefreshTest, givesTheStaleTokenWhereTheServerRefuses) {
    store(u"stale"_s, u"refresh"_s, 0);
    const auto before = stored();
    server.answer("no", "401 Unauthorized");
    EXPECT_EQ(validToken(), "stale");
    EXPECT_EQ(stored(), before);
    EXPECT_EQ(logs.errors(), QStringList{u"Auto-refresh failed: Token refresh failed"_s});
    EXPECT_TRUE(desktop.browser.pages.empty());
}

TEST_P(AuthRefreshTest, givesTheStaleTokenWhereTheServerIsLost) {
    store(u"stale"_s, u"refresh"_s, 0);
    const QString base = server.baseUrl();
    server.stopListening();
    EXPECT_EQ(complete(service->validToken(base)), u"stale"_s);
    EXPECT_EQ(logs.errors().size(), 1);
}

TEST_P(AuthRefreshTest, givesTheStaleTokenWhereTheAnswerMakesNoSense) {
    store(u"stale"_s, u"refresh"_s, 0);
    for (const auto* const answer : {"", "{}", "[]", R"({"access_token":"x","expires_in":18446744073709551615})"}) {
        server.answer(answer);
        EXPECT_EQ(validToken(), "stale") << answer;
    }
}

TEST_P(AuthRefreshTest, givesTheStaleTokenWhereTheServerNeverAnswers) {
    store(u"stale"_s, u"refresh"_s, 0);
    server.hold();
    const auto asking = beginValidToken();
    ASSERT_TRUE(asks(1));
    pass(60s - 1ms);
    EXPECT_FALSE(asking->result);
    pass(1ms);
    EXPECT_EQ(end(asking), "stale");
}

TEST_P(AuthRefreshTest, givesTheStaleTokenWhereTheAddressIsNone) {
    store(u"stale"_s, u"refresh"_s, 0);
    EXPECT_EQ(complete(service->validToken(u"nowhere"_s)), u"stale"_s);
    EXPECT_EQ(logs.errors(), QStringList{u"Auto-refresh failed: Invalid OAuth URL"_s});
}

TEST_P(AuthRefreshTest, theLaterOfTwoRefreshesStays) {
    store(u"old"_s, u"refresh"_s, 0);
    server.hold();
    server.hold();
    const auto first = beginValidToken();
    ASSERT_TRUE(asks(1));
    const auto second = beginValidToken();
    ASSERT_TRUE(asks(2));
    server.release(goodTokens);
    EXPECT_EQ(end(first), "new");
    server.release(twinTokens);
    EXPECT_EQ(end(second), "twin");
    EXPECT_EQ(token(), "twin");
    EXPECT_EQ(stored(), fileOf("twin", "twins", 7200));
}

TEST_P(AuthRefreshTest, aRefusedTwinLeavesTheTokensOfTheFasterOne) {
    store(u"old"_s, u"refresh"_s, 0);
    server.hold();
    server.hold();
    const auto first = beginValidToken();
    ASSERT_TRUE(asks(1));
    const auto second = beginValidToken();
    ASSERT_TRUE(asks(2));
    server.release(goodTokens);
    EXPECT_EQ(end(first), "new");
    server.release("spent", "400 Bad Request");
    EXPECT_EQ(end(second), "new");
    EXPECT_EQ(token(), "new");
    EXPECT_EQ(stored(), fileOf("new", "next", 3600));
}

TEST_P(AuthRefreshTest, aSignInWhoseRefreshWasRefusedTakesTheTokensOfTheFasterOne) {
    store(u"old"_s, u"refresh"_s, 0);
    server.hold();
    server.hold();
    const auto asking = beginValidToken();
    ASSERT_TRUE(asks(1));
    const auto attempt = beginLogin();
    ASSERT_TRUE(asks(2));
    server.release(goodTokens);
    EXPECT_EQ(end(asking), "new");
    server.release("spent", "400 Bad Request");
    EXPECT_EQ(end(attempt), "ok");
    EXPECT_EQ(stored(), fileOf("new", "next", 3600));
    EXPECT_TRUE(desktop.browser.pages.empty());
}

TEST_P(AuthRefreshTest, otherCallsRunWhileOneWaits) {
    store(u"old"_s, u"refresh"_s, 0);
    server.hold();
    const auto asking = beginValidToken();
    ASSERT_TRUE(asks(1));
    EXPECT_EQ(token(), "(none)");
    EXPECT_FALSE(isAuthenticated());
    server.release(goodTokens);
    EXPECT_EQ(end(asking), "new");
}

TEST_P(AuthRefreshTest, invalidatingForgetsMemoryAndFile) {
    store(u"kept"_s, u"refresh"_s, 100);
    EXPECT_EQ(validToken(), "kept");
    complete(service->invalidateToken());
    EXPECT_EQ(token(), "(none)");
    EXPECT_EQ(stored(), "");
    EXPECT_EQ(validToken(), "(none)");
    EXPECT_EQ(logs.infos(), QStringList{u"Token invalidated (401 from API)"_s});
}

TEST_P(AuthRefreshTest, loggingOutForgetsMemoryAndFile) {
    store(u"kept"_s, u"refresh"_s, 100);
    EXPECT_EQ(validToken(), "kept");
    complete(service->logout());
    EXPECT_EQ(token(), "(none)");
    EXPECT_EQ(stored(), "");
    EXPECT_EQ(logs.infos(), QStringList{u"Logged out"_s});
    // Also where there is nothing.
    complete(service->logout());
    EXPECT_EQ(validToken(), "(none)");
}

TEST_P(AuthRefreshTest, aRefreshUnderWayDoesNotUndoALogout) {
    store(u"old"_s, u"refresh"_s, 0);
    server.hold();
    server.hold();
    const auto asking = beginValidToken();
    ASSERT_TRUE(asks(1));
    const auto attempt = beginLogin();
    ASSERT_TRUE(asks(2));
    complete(service->logout());
    server.release(goodTokens);
    EXPECT_EQ(end(asking), "(none)");
    server.release(goodTokens);
    EXPECT_EQ(end(attempt), "Authentication cancelled");
    EXPECT_EQ(token(), "(none)");
    EXPECT_EQ(stored(), "");
    EXPECT_TRUE(desktop.browser.pages.empty());
}

TEST_P(AuthRefreshTest, aRefreshThatWasUnderWayOutlivesARefusedToken) {
    store(u"old"_s, u"refresh"_s, 0);
    server.hold();
    const auto asking = beginValidToken();
    ASSERT_TRUE(asks(1));
    complete(service->invalidateToken());
    server.release(goodTokens);
    EXPECT_EQ(end(asking), "new");
    EXPECT_EQ(stored(), fileOf("new", "next", 3600));
}

TEST_P(AuthRefreshTest, endsWithTheService) {
    store(u"old"_s, u"refresh"_s, 0);
    server.hold();
    const auto asking = beginValidToken();
    ASSERT_TRUE(asks(1));
    service.reset();
    EXPECT_EQ(end(asking), "(none)");
}

INSTANTIATE_TEST_SUITE_P(Placements, AuthRefreshTest, testing::Values(Placement::inlined, Placement::threaded),
                         placementName);

}  // namespace corvellan::test
