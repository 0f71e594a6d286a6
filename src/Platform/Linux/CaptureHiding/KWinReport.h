#pragma once

#include <functional>
#include <QObject>
#include <QString>

namespace corvellan {

/// What a script within KWin calls to tell how it went. Anyone on the bus can call it: whoever listens
/// compares the token.
class KWinReport final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.teskara.CorvellanBram.CaptureHiding")

public:
    static constexpr char16_t interfaceName[] = u"com.teskara.CorvellanBram.CaptureHiding";

    explicit KWinReport(std::function<void(const QString& token, const QString& answer)> onReport);

public Q_SLOTS:
    void report(const QString& token, const QString& answer);

private:
    std::function<void(const QString& token, const QString& answer)> m_onReport;
};

}  // namespace corvellan
