#include "AuthService.h"

#include <stop_token>
#include <utility>
#include <vector>

#include "Base/Log.h"
#include "CallbackListener.h"
#include "Pkce.h"
#include "Platform/LoopbackListener.h"
#include "Platform/WebBrowser.h"
#include "TokenEndpoint.h"
#include "TokenFile.h"

namespace corvellan {

using namespace Qt::StringLiterals;

namespace {

using TokensResult = std::expected<AuthTokens, Error>;

std::unexpected<Error> failure(AuthError error) {
    return std::unexpected<Error>{std::move(error)};
}

/// On the main thread. Nobody can come back from a page that is not shown.
QCoro::Task<void> showPage(WebBrowser& browser, QUrl page, AsyncStream<CallbackOutcome>::Producer delivery) {
    const auto opened = co_await browser.open(page);
    if (!opened)
        delivery.push(std::unexpected(opened.error()));
}

}  // namespace

/// What the executor alone touches. Work under way holds on to it, and to nothing else of the service.
struct AuthService::State {
    explicit State(Environment all) : environment(std::move(all)), file(environment.tokenFilePath) {}

    using Shared = std::shared_ptr<State>;

    /// The service's own. Once `gone` is requested, none of it may be there any more but the executors.
    const Environment environment;
    const TokenFile file;
    const Logger logger{"Auth"};
    std::optional<AuthTokens> cachedTokens;
    /// Counts, so that a refresh that was under way then does not bring the tokens back.
    int logouts = 0;
    /// For the browser; more than one when sign-ins overlap.
    std::vector<std::weak_ptr<CallbackListener>> waits;
    std::stop_source gone;

    [[nodiscard]] bool isGone() const { return gone.stop_requested(); }
    [[nodiscard]] bool hasValidTokens() const {
        return cachedTokens && cachedTokens->isValid(environment.clock.wallNow());
    }

    void keep(AuthTokens tokens) {
        file.save(tokens);
        cachedTokens = std::move(tokens);
    }
    void forget() {
        cachedTokens.reset();
        file.remove();
    }

    static QCoro::Task<std::expected<void, Error>> login(Shared state, QString authBaseUrl);
    static QCoro::Task<std::optional<QString>> validToken(Shared state, QString authBaseUrl);
    static QCoro::Task<TokensResult> runOAuthFlow(Shared state, QString authBaseUrl);
    static QCoro::Task<CallbackOutcome> waitForCallback(Shared state, QUrl page);
    static QCoro::Task<TokensResult> exchangeCode(Shared state, QString code, QByteArray verifier, QString authBaseUrl);
    static QCoro::Task<TokensResult> refreshToken(Shared state, QString refreshToken, QString authBaseUrl);
    static QCoro::Task<std::expected<HttpAnswer, Error>> send(Shared state, HttpRequest request);
};

QCoro::Task<std::expected<void, Error>> AuthService::State::login(Shared state, QString authBaseUrl) {
    if (auto tokens = state->file.load()) {
        if (tokens->isValid(state->environment.clock.wallNow())) {
            state->logger.info(u"Using cached access token"_s);
            state->cachedTokens = std::move(tokens);
            co_return {};
        }
        if (tokens->refreshToken) {
            state->logger.info(u"Token expired, trying refresh"_s);
            const int logouts = state->logouts;
            auto refreshed = co_await refreshToken(state, *tokens->refreshToken, authBaseUrl);
            if (state->isGone())
                co_return std::unexpected(Error::cancelled());
            if (state->logouts != logouts)
                co_return failure({.kind = AuthError::Kind::cancelled, .message = {}});
            if (refreshed) {
                state->keep(std::move(*refreshed));
                co_return {};
            }
            state->logger.error(u"Refresh failed: "_s + refreshed.error().errorDescription());
            // Another refresh with the same token was faster, and this one was refused for it.
            if (state->hasValidTokens())
                co_return {};
        }
    }
    state->forget();

    auto tokens = co_await runOAuthFlow(state, authBaseUrl);
    if (!tokens && !state->isGone()) {
        const auto* const error = tokens.error().as<AuthError>();
        if (error && error->kind == AuthError::Kind::tokenExchangeFailed) {
            state->logger.error(u"OAuth token exchange failed, retrying: "_s + error->message);
            tokens = co_await runOAuthFlow(state, authBaseUrl);
        }
    }
    if (state->isGone())
        co_return std::unexpected(Error::cancelled());
    if (!tokens)
        co_return std::unexpected(tokens.error());
    state->keep(std::move(*tokens));
    co_return {};
}

QCoro::Task<std::optional<QString>> AuthService::State::validToken(Shared state, QString authBaseUrl) {
    // Copied by name: a plain `co_return` would move the text out of the member.
    const auto accessToken = [](const AuthTokens& tokens) { return std::optional{tokens.accessToken}; };
    if (state->hasValidTokens())
        co_return accessToken(*state->cachedTokens);
    auto stored = state->file.load();
    if (stored && stored->isValid(state->environment.clock.wallNow())) {
        state->cachedTokens = stored;
        co_return accessToken(*stored);
    }

    const bool isInMemory = state->cachedTokens && state->cachedTokens->refreshToken;
    const auto& holder = isInMemory ? state->cachedTokens : stored;
    const int logouts = state->logouts;
    if (const auto refresh = holder ? holder->refreshToken : std::nullopt) {
        state->logger.info(u"Token expired, auto-refreshing for API call"_s);
        auto refreshed = co_await refreshToken(state, *refresh, authBaseUrl);
        if (state->isGone())
            co_return std::nullopt;
        if (refreshed && state->logouts == logouts) {
            state->keep(std::move(*refreshed));
            co_return accessToken(*state->cachedTokens);
        }
        if (!refreshed)
            state->logger.error(u"Auto-refresh failed: "_s + refreshed.error().errorDescription());
    }
    // Expired or not: the server's refusal leads to a new sign-in. What another refresh has brought meanwhile
    // is here, and nothing after a sign-out.
    if (state->cachedTokens)
        co_return accessToken(*state->cachedTokens);
    if (stored && state->logouts == logouts)
        co_return accessToken(*stored);
    co_return std::nullopt;
}

QCoro::Task<TokensResult> AuthService::State::runOAuthFlow(Shared state, QString authBaseUrl) {
    const auto pkce = Pkce::make();
    const auto page = oauth::authorizationUrl(authBaseUrl, pkce.challenge);
    if (!page)
        co_return failure(page.error());
    state->logger.info(u"Starting OAuth flow — opening browser"_s);
    const auto code = co_await waitForCallback(state, *page);
    if (!code)
        co_return std::unexpected(code.error());
    auto tokens = co_await exchangeCode(state, *code, pkce.verifier, authBaseUrl);
    if (tokens && !state->isGone())
        state->logger.info(u"OAuth flow completed"_s);
    co_return tokens;
}

QCoro::Task<CallbackOutcome> AuthService::State::waitForCallback(Shared state, QUrl page) {
    auto made = state->environment.listeners.make();
    if (!made)
        co_return std::unexpected(made.error());
    const auto listener =
        std::make_shared<CallbackListener>(std::move(*made), state->environment.executor, state->environment.clock);
    std::erase_if(state->waits, [](const auto& wait) { return wait.expired(); });
    state->waits.push_back(listener);
    // Posted, since it is slow beside listening: who comes back at once finds the port open.
    state->environment.main.post([state, page, delivery = listener->delivery()] {
        // The browser goes after the service, and both on this thread.
        if (!state->isGone())
            showPage(state->environment.browser, page, delivery);
    });
    state->logger.info(u"Waiting for OAuth callback on port %1"_s.arg(CallbackListener::port));
    listener->start();
    const auto outcome = co_await listener->outcome(state->gone.get_token());
    listener->stop();
    co_return outcome;
}

QCoro::Task<TokensResult> AuthService::State::exchangeCode(Shared state, QString code, QByteArray verifier,
                                                           QString authBaseUrl) {
    auto request = oauth::codeRequest(authBaseUrl, code, verifier);
    if (!request)
        co_return failure(request.error());
    const auto answer = co_await send(state, std::move(*request));
    if (!answer)
        co_return std::unexpected(answer.error());
    if (answer->status != 200)
        co_return failure({.kind = AuthError::Kind::tokenExchangeFailed, .message = oauth::refusalText(answer->body)});
    co_return AuthTokens::decodeAnswer(answer->body, state->environment.clock.wallNow());
}

QCoro::Task<TokensResult> AuthService::State::refreshToken(Shared state, QString refreshToken, QString authBaseUrl) {
    auto request = oauth::refreshRequest(authBaseUrl, refreshToken);
    if (!request)
        co_return failure(request.error());
    const auto answer = co_await send(state, std::move(*request));
    if (!answer)
        co_return std::unexpected(answer.error());
    if (answer->status != 200)
        co_return failure({.kind = AuthError::Kind::refreshFailed, .message = {}});
    auto tokens = AuthTokens::decodeAnswer(answer->body, state->environment.clock.wallNow());
    if (tokens && !tokens->refreshToken)
        tokens->refreshToken = refreshToken;
    co_return tokens;
}

QCoro::Task<std::expected<HttpAnswer, Error>> AuthService::State::send(Shared state, HttpRequest request) {
    if (state->isGone())
        co_return std::unexpected(Error::cancelled());
    auto answer = co_await state->environment.http.send(std::move(request), state->gone.get_token());
    // What the answer would be judged with has gone as well.
    if (state->isGone())
        co_return std::unexpected(Error::cancelled());
    co_return answer;
}

AuthService::AuthService(Environment environment) : m_state(std::make_shared<State>(std::move(environment))) {}

AuthService::~AuthService() {
    m_state->gone.request_stop();
    runAndWait(m_state->environment.executor, [this] {
        for (const auto& wait : m_state->waits)
            if (const auto listener = wait.lock())
                listener->stop();
    });
}

QCoro::Task<bool> AuthService::isAuthenticated() {
    return m_state->environment.executor.call([state = m_state] { return state->hasValidTokens(); });
}

QCoro::Task<std::optional<QString>> AuthService::token() {
    return m_state->environment.executor.call([state = m_state]() -> std::optional<QString> {
        return state->cachedTokens ? std::optional{state->cachedTokens->accessToken} : std::nullopt;
    });
}

QCoro::Task<std::optional<QString>> AuthService::validToken(QString authBaseUrl) {
    return m_state->environment.executor.run(
        [state = m_state, authBaseUrl = std::move(authBaseUrl)] { return State::validToken(state, authBaseUrl); });
}

QCoro::Task<void> AuthService::invalidateToken() {
    return m_state->environment.executor.call([state = m_state] {
        state->logger.info(u"Token invalidated (401 from API)"_s);
        state->forget();
    });
}

QCoro::Task<std::expected<void, Error>> AuthService::login() {
    return login(m_state->environment.defaultBaseUrl);
}

QCoro::Task<std::expected<void, Error>> AuthService::login(QString authBaseUrl) {
    return m_state->environment.executor.run(
        [state = m_state, authBaseUrl = std::move(authBaseUrl)] { return State::login(state, authBaseUrl); });
}

QCoro::Task<void> AuthService::logout() {
    return m_state->environment.executor.call([state = m_state] {
        ++state->logouts;
        state->forget();
        state->logger.info(u"Logged out"_s);
    });
}

}  // namespace corvellan
