#pragma once

#include "Base/CalendarDays.h"
#include "Services/Protocols/SessionStoreProtocol.h"
#include "Views/History/SessionFilter.h"

/// What the tests of the history share.
namespace corvellan::test {

using namespace Qt::StringLiterals;

[[nodiscard]] inline const DateStyle& berlin() {
    static const DateStyle style{"de_DE", u"Europe/Berlin"_s};
    return style;
}

/// Monday, 2 March 2026, 11:00 in Berlin.
inline constexpr WallTime noonish = std::chrono::sys_days{std::chrono::year{2026} / 3 / 2} + std::chrono::hours{10};

[[nodiscard]] inline SessionIndexEntry entryAt(WallTime date, bool wasTrainMode = false) {
    SessionIndexEntry entry;
    entry.id = QUuid::createUuid();
    entry.createdDate = date;
    entry.wasTrainMode = wasTrainMode;
    return entry;
}

/// The first criteria, so many.
[[nodiscard]] constexpr MeddicScore scoreOf(int score) {
    return {.metrics = score > 0,
            .economicBuyer = score > 1,
            .decisionCriteria = score > 2,
            .decisionProcess = score > 3,
            .identifyPain = score > 4,
            .champion = score > 5};
}

[[nodiscard]] inline SessionIndexEntry scored(MeddicScore meddic, std::int64_t durationSecs = 0) {
    SessionIndexEntry entry = entryAt(noonish);
    entry.durationSecs = durationSecs;
    entry.meddicScore = static_cast<std::int8_t>(meddic.score());
    std::ranges::copy(meddic.values(), std::begin(entry.meddicCriteriaMet));
    return entry;
}

[[nodiscard]] inline RecordPlaces allOf(const std::vector<SessionIndexEntry>& records) {
    return filteredRecords(records, FilterMode::all, std::nullopt);
}

}  // namespace corvellan::test
