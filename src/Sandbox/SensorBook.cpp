#include "SensorBook.h"

#include <algorithm>
#include <array>
#include <QJsonDocument>

#include "CustomerBook.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

struct EventRow {
    SensorReport::Event value;
    std::string_view raw;
};
constexpr std::array eventRows{
    EventRow{SensorReport::Event::context, "context"},
    EventRow{SensorReport::Event::callStart, "call_start"},
    EventRow{SensorReport::Event::callEnd, "call_end"},
    EventRow{SensorReport::Event::disconnect, "disconnect"},
};

struct TextRow {
    QLatin1StringView key;
    std::optional<QString> SensorReport::* member;
};
constexpr std::array textRows{
    TextRow{"entity_type"_L1, &SensorReport::entityType},
    TextRow{"entity_id"_L1, &SensorReport::entityId},
    TextRow{"display_name"_L1, &SensorReport::displayName},
    TextRow{"company_name"_L1, &SensorReport::companyName},
    TextRow{"hubspot_company_id"_L1, &SensorReport::hubspotCompanyId},
};

bool isEmpty(const SensorReport& report) {
    return std::ranges::none_of(textRows, [&](const TextRow& row) { return (report.*row.member).has_value(); });
}

/// The context as a report tells it.
ExtensionContextPayload contextOf(const SensorReport& report, const CustomerBook& customers) {
    ExtensionContextPayload context{.entityType = {},
                                    .entityId = {},
                                    .displayName = report.displayName,
                                    .companyName = report.companyName,
                                    .hubspotCompanyId = report.hubspotCompanyId};
    const auto* const customer = report.companyName ? customers.find({}, {}, report.companyName) : nullptr;
    if (!context.hubspotCompanyId && customer)
        context.hubspotCompanyId = customer->hubspotId();
    context.entityType = report.entityType.value_or(report.companyName ? u"company"_s : u"contact"_s);
    context.entityId = report.entityId.value_or(
        context.hubspotCompanyId.value_or(report.companyName.value_or(report.displayName.value_or(u"sandbox"_s))));
    return context;
}

}  // namespace

std::expected<SensorReport, QString> SensorReport::decode(const QJsonObject& json) {
    const QString word = json.value(u"event"_s).toString();
    const auto* const row =
        std::ranges::find_if(eventRows, [&](const EventRow& one) { return tableText(one.raw) == word; });
    if (row == eventRows.end())
        return std::unexpected(u"event is context, call_start, call_end or disconnect"_s);
    SensorReport report{.event = row->value};
    for (const auto& [key, member] : textRows) {
        const auto value = json.value(key);
        if (value.isUndefined() || value.isNull())
            continue;
        // Qt's JSON keeps a byte-order mark before a text in one of its forms and loses it in another.
        const QString found = value.toString().remove(QChar::ByteOrderMark);
        if (found.trimmed().isEmpty() || found.size() > longestText)
            return std::unexpected(u"%1 is a text of 1 to %2 characters"_s.arg(key).arg(longestText));
        report.*member = found;
    }
    return report;
}

QJsonObject SensorReport::json() const {
    const auto* const row = std::ranges::find(eventRows, event, &EventRow::value);
    QJsonObject object{{u"event"_s, tableText(row->raw)}};
    for (const auto& [key, member] : textRows)
        if (const auto& value = this->*member)
            object.insert(key, *value);
    return object;
}

std::optional<ServerMsg> SensorBook::take(const SensorReport& report, const CustomerBook& customers, WallTime now) {
    auto message = apply(report, customers, now);
    onChanged();
    return message;
}

std::optional<ServerMsg> SensorBook::apply(const SensorReport& report, const CustomerBook& customers, WallTime now) {
    if (report.event == SensorReport::Event::disconnect) {
        m_state = {};
        return std::nullopt;
    }
    m_state.isConnected = true;
    if (!isEmpty(report) || !m_state.context)
        m_state.context = contextOf(report, customers);
    if (report.event == SensorReport::Event::callEnd) {
        std::optional<std::uint64_t> seconds;
        if (m_state.callStartedAt && now >= *m_state.callStartedAt)
            seconds = std::chrono::floor<std::chrono::seconds>(now - *m_state.callStartedAt).count();
        m_state.callStartedAt.reset();
        m_state.context->callActive = false;
        return ServerMsg{ServerMsg::ExtensionCallEnded{.durationSecs = seconds}};
    }
    if (report.event == SensorReport::Event::callStart)
        m_state.callStartedAt = now;
    m_state.context->callActive = m_state.callStartedAt.has_value();
    return ServerMsg{*m_state.context};
}

QJsonObject SensorBook::status() const {
    QJsonObject object{{u"sensor_connected"_s, m_state.isConnected}};
    if (m_state.context) {
        // The message about it has the same keys.
        const auto encoded = ServerMsg{*m_state.context}.encode();
        auto context = QJsonDocument::fromJson(encoded.value_or(QByteArray{})).object();
        context.remove(u"type"_s);
        object.insert(u"context"_s, context);
    }
    return object;
}

}  // namespace corvellan::sandbox
