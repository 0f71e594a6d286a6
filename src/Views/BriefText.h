#pragma once

#include <optional>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariantList>
#include <vector>

#include "Base/DateText.h"
#include "FixedRowsModel.h"
#include "Models/Briefing.h"

/// What the home screen shows of a company, as finished texts. Pure functions, callable from any thread.
namespace corvellan::brief {

/// Maps with "label" and "value": "Total", "Last 12mo" and "Orders", as far as the brief has them.
[[nodiscard]] QVariantList revenue(const SalesBrief& brief);
/// Maps with "name" and "value".
[[nodiscard]] QVariantList products(const SalesBrief& brief);
/// Maps with "name" and "detail"; each may be empty, not both.
[[nodiscard]] QVariantList contacts(const SalesBrief& brief);

/// Rows of "body" and "caption" (author and day), the newest first; those whose date can't be read come last.
[[nodiscard]] std::vector<FixedRowsModel::Row> notes(const SalesBrief& brief, const DateStyle& style);
/// Every "&nbsp;" a blank, and none at the ends; line feeds stay.
[[nodiscard]] QString noteBody(QString body);

/// A page that a browser may open: "http" or "https" at some host. Absent for any other text.
[[nodiscard]] std::optional<QUrl> page(const std::optional<QString>& address);

/// Those of the texts that are not empty, with `separator` between them.
[[nodiscard]] QString joined(QStringList texts, const QString& separator);

/// Rows of "symbol", "colorName", "title", "detail" and "date".
[[nodiscard]] std::vector<FixedRowsModel::Row> events(const TimelineResponse& timeline, const DateStyle& style);

}  // namespace corvellan::brief
