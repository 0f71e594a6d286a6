#include "AbsentServices.h"

namespace corvellan {

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
