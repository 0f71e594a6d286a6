#pragma once

#include <expected>
#include <optional>
#include <QDBusConnection>
#include <QDBusMessage>

#include "Base/Clock.h"
#include "Base/Error.h"
#include "HidingFacility.h"

namespace corvellan {

/// KWin from Plasma 6.6 on: sets `excludeFromCapture` on our window alone, by a short script that KWin is
/// asked to run once and that reports what the property reads afterwards. No configuration is touched.
class KWinFacility final : public HidingFacility {
public:
    /// How long a window that was just shown may take to appear in KWin's list.
    static constexpr std::chrono::seconds windowPatience{3};
    static constexpr std::chrono::milliseconds windowPollInterval{250};
    /// For each call, and for the script's report.
    static constexpr std::chrono::seconds callPatience{2};

    /// \param scriptFolder where scripts lie while KWin reads them: private to the user.
    /// \param clock outlives it.
    KWinFacility(QDBusConnection bus, QString scriptFolder, Clock& clock);

    [[nodiscard]] QString offer() const override;
    QCoro::Task<HidingAnswer> apply(HidingRequest request, std::stop_token stop) override;

private:
    using Report = std::expected<QString, Error>;

    /// One run of the script, and the word that it reported.
    QCoro::Task<Report> runOnce(HidingRequest request, std::stop_token stop);
    QCoro::Task<std::optional<Error>> load(QString scriptPath, QString name, std::stop_token stop);
    QCoro::Task<std::expected<QDBusMessage, Error>> call(QDBusMessage message, std::stop_token stop);

    QDBusConnection m_bus;
    QString m_scriptFolder;
    Clock& m_clock;
};

}  // namespace corvellan
