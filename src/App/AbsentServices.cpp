#include "AbsentServices.h"

using namespace Qt::StringLiterals;

namespace corvellan {

QCoro::Task<bool> AbsentAuthService::isAuthenticated() {
    co_return false;
}

QCoro::Task<std::optional<QString>> AbsentAuthService::token() {
    co_return std::nullopt;
}

QCoro::Task<std::optional<QString>> AbsentAuthService::validToken(QString) {
    co_return std::nullopt;
}

QCoro::Task<void> AbsentAuthService::invalidateToken() {
    co_return;
}

QCoro::Task<std::expected<void, Error>> AbsentAuthService::login() {
    return login({});
}

QCoro::Task<std::expected<void, Error>> AbsentAuthService::login(QString) {
    co_return std::unexpected(AbsentServiceError{
        u"This version cannot sign in yet. It coaches calls on a local server: set serverMode to local."_s});
}

QCoro::Task<void> AbsentAuthService::logout() {
    co_return;
}

void AbsentTtsService::feedToken(const QString&) {}

void AbsentTtsService::flush() {}

void AbsentTtsService::stop() {}

void AbsentTtsService::setOnPlayingChanged(std::function<void(bool)>) {}

QCoro::Task<void> AbsentScreenShareService::start(QString, QString, std::optional<QString>, ScreenShareOptions) {
    co_return;
}

QCoro::Task<void> AbsentScreenShareService::stop() {
    co_return;
}

}  // namespace corvellan
