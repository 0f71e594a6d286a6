#include "BriefText.h"

#include <algorithm>

#include "ActivityText.h"
#include "Base/Iso8601.h"
#include "Base/Text.h"
#include "Money.h"
#include "Theme.h"

namespace corvellan::brief {

using namespace Qt::StringLiterals;

namespace {

std::optional<double> amount(const std::optional<StringOrNumber>& value) {
    return value ? value->value : std::nullopt;
}

/// Without blanks and tabs at both ends.
QString withoutBlanks(QStringView text) {
    const auto isBlank = [](QChar character) { return character == u' ' || character == u'\t'; };
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text.toString();
}

}  // namespace

QString joined(QStringList texts, const QString& separator) {
    texts.removeAll(QString{});
    return texts.join(separator);
}

QVariantList revenue(const SalesBrief& brief) {
    QVariantList facts;
    const auto add = [&facts](const QString& label, const QString& value) {
        facts.append(QVariantMap{{u"label"_s, label}, {u"value"_s, value}});
    };
    if (!brief.revenue)
        return facts;
    if (const auto total = amount(brief.revenue->total_usd))
        add(u"Total"_s, formatUSD(*total));
    if (const auto lastYear = amount(brief.revenue->last_12mo_usd))
        add(u"Last 12mo"_s, formatUSD(*lastYear));
    if (const auto orders = brief.revenue->total_orders)
        add(u"Orders"_s, QString::number(*orders));
    return facts;
}

QVariantList products(const SalesBrief& brief) {
    QVariantList rows;
    for (const SalesBriefProduct& product : brief.topProducts.value_or(std::vector<SalesBriefProduct>{})) {
        const auto total = amount(product.total_usd);
        const QString name = product.product_name.value_or(QString{});
        if (!name.isEmpty() || total)
            rows.append(QVariantMap{{u"name"_s, name}, {u"value"_s, total ? formatUSD(*total) : QString{}}});
    }
    return rows;
}

QVariantList contacts(const SalesBrief& brief) {
    QVariantList rows;
    for (const SalesBriefContact& contact : brief.contacts.value_or(std::vector<SalesBriefContact>{})) {
        const QString name =
            joined({contact.firstname.value_or(QString{}), contact.lastname.value_or(QString{})}, u" "_s);
        const QString detail = contact.email.value_or(QString{});
        if (!name.isEmpty() || !detail.isEmpty())
            rows.append(QVariantMap{{u"name"_s, name}, {u"detail"_s, detail}});
    }
    return rows;
}

QString noteBody(QString body) {
    return withoutBlanks(body.replace(u"&nbsp;"_s, u" "_s));
}

std::vector<FixedRowsModel::Row> notes(const SalesBrief& brief, const DateStyle& style) {
    struct Dated {
        std::optional<WallTime> time;
        std::size_t place = 0;
        FixedRowsModel::Row row;
    };
    std::vector<Dated> dated;
    for (const SalesBriefNote& note : brief.notes.value_or(std::vector<SalesBriefNote>{})) {
        const QString stamp = note.hs_timestamp.value_or(QString{});
        dated.push_back(
            {parseIso8601(stamp), dated.size(),
             FixedRowsModel::Row{noteBody(note.body.value_or(QString{})),
                                 joined({note.author.value_or(QString{}), formatNoteDate(stamp, style)}, u" · "_s)}});
    }
    // An absent time is the smallest.
    std::ranges::sort(dated, [](const Dated& one, const Dated& other) {
        return one.time == other.time ? one.place < other.place : one.time > other.time;
    });
    std::vector<FixedRowsModel::Row> rows;
    for (Dated& note : dated)
        rows.push_back(std::move(note.row));
    return rows;
}

std::optional<QUrl> page(const std::optional<QString>& address) {
    const QUrl url{address.value_or(QString{}), QUrl::StrictMode};
    const bool isOfTheWeb = url.scheme() == u"https"_s || url.scheme() == u"http"_s;
    return url.isValid() && isOfTheWeb && !url.host().isEmpty() ? std::optional{url} : std::nullopt;
}

std::vector<FixedRowsModel::Row> events(const TimelineResponse& timeline, const DateStyle& style) {
    std::vector<FixedRowsModel::Row> rows;
    for (const TimelineEvent& event : timeline.timeline) {
        const QString subject = event.subject.value_or(QString{});
        rows.push_back({timelineEventIcon(event.eventType), colorName(timelineEventColor(event.eventType)),
                        subject.isEmpty() ? text::upperFirst(event.eventType) : subject,
                        event.outcome.value_or(QString{}), formatEventDate(event.date, style)});
    }
    return rows;
}

}  // namespace corvellan::brief
