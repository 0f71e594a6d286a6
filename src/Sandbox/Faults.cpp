#include "Faults.h"

#include <QRegularExpression>

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

struct PlainFault {
    QLatin1StringView name;
    bool Faults::* flag;
    QLatin1StringView meaning;
};

constexpr PlainFault plainFaults[] = {
    {QLatin1StringView{"unknown-enum"}, &Faults::unknownEnum,
     QLatin1StringView{"before each tip, one whose coaching_type no client knows"}},
    {QLatin1StringView{"refuse-token"}, &Faults::refuseToken,
     QLatin1StringView{"the provider refuses every token (401)"}},
    {QLatin1StringView{"no-token"}, &Faults::noToken, QLatin1StringView{"session_started carries no tokens"}},
    {QLatin1StringView{"silence"}, &Faults::silence, QLatin1StringView{"the coach never answers"}},
    {QLatin1StringView{"error-before-start"}, &Faults::errorBeforeStart,
     QLatin1StringView{"the coach answers start_session with an error"}},
    {QLatin1StringView{"provider-error"}, &Faults::providerError,
     QLatin1StringView{"the provider reports an error with each side's first audio"}},
    {QLatin1StringView{"refuse-code"}, &Faults::refuseCode,
     QLatin1StringView{"the token endpoint refuses every code (400)"}},
    {QLatin1StringView{"refuse-refresh"}, &Faults::refuseRefresh,
     QLatin1StringView{"the token endpoint refuses every refresh token (400)"}},
};

constexpr std::chrono::milliseconds slowerThanClientsWait{3500};

}  // namespace

std::expected<void, QString> Faults::add(const QString& name) {
    for (const auto& fault : plainFaults) {
        if (name == fault.name) {
            this->*fault.flag = true;
            return {};
        }
    }
    static const QRegularExpression close{u"\\Aclose-at-step-(\\d{1,6})(?::(\\d{4}))?\\z"_s};
    if (const auto match = close.match(name); match.hasMatch()) {
        CloseAt at{.step = match.captured(1).toInt()};
        if (!match.captured(2).isEmpty())
            at.code = match.captured(2).toInt();
        // The codes between are reserved, and no close frame may carry them.
        constexpr int lowest = 1000;
        constexpr int highest = 4999;
        if (at.code < lowest || at.code > highest || (at.code >= 1004 && at.code <= 1006) ||
            (at.code >= 1015 && at.code < 3000))
            return std::unexpected(u"%1 is no code that a close frame may carry"_s.arg(at.code));
        closeAt = at;
        return {};
    }
    static const QRegularExpression slow{u"\\Aslow-summary(?::(\\d{1,6}))?\\z"_s};
    if (const auto match = slow.match(name); match.hasMatch()) {
        slowSummary =
            match.captured(1).isEmpty() ? slowerThanClientsWait : std::chrono::milliseconds{match.captured(1).toInt()};
        return {};
    }
    return std::unexpected(u"there is no fault \"%1\""_s.arg(name));
}

QStringList Faults::help() {
    QStringList lines;
    for (const auto& fault : plainFaults)
        lines.append(QString{fault.name}.leftJustified(26) + fault.meaning);
    lines.append(u"close-at-step-N[:CODE]"_s.leftJustified(26) +
                 u"the coach closes after its Nth message (code 1011; 0: in place of the first)"_s);
    lines.append(u"slow-summary[:MS]"_s.leftJustified(26) + u"the summary comes late (3500 ms; clients wait 3 s)"_s);
    return lines;
}

}  // namespace corvellan::sandbox
