#include "AbsentServices.h"

namespace corvellan {

void AbsentTtsService::feedToken(const QString&) {}

void AbsentTtsService::flush() {}

void AbsentTtsService::stop() {}

void AbsentTtsService::setOnPlayingChanged(std::function<void(bool)>) {}

}  // namespace corvellan
