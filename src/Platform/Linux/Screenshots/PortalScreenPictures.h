#pragma once

#include <QDBusConnection>
#include <QVariantMap>

#include "Base/Clock.h"
#include "Base/Executor.h"
#include "Platform/ScreenPictures.h"

namespace corvellan {

/// Asks the desktop's screenshot portal, which may ask the user. The file that it leaves behind is removed. A
/// user who declines or does not answer is told apart as `ScreenshotRefused`.
class PortalScreenPictures final : public ScreenPictures {
public:
    /// As long as a user may take to answer the desktop's question.
    static constexpr std::chrono::seconds patience{60};
    /// Of the picture's file.
    static constexpr qint64 fileLimit = 256LL << 20;

    /// \param worker reads the picture. All of it outlives the object.
    PortalScreenPictures(QDBusConnection bus, Executor& worker, Clock& clock);

    QCoro::Task<std::expected<QImage, Error>> takePicture(std::stop_token stop) override;

private:
    QDBusConnection m_bus;
    Executor& m_worker;
    Clock& m_clock;
};

/// Receives a portal's answer to one request.
class PortalResponse final : public QObject {
    Q_OBJECT

public:
    explicit PortalResponse(std::function<void()> onResponse);

    [[nodiscard]] bool hasCome() const { return m_hasCome; }
    /// 0 when it was granted, 1 when the user declined.
    [[nodiscard]] uint code() const { return m_code; }
    [[nodiscard]] const QVariantMap& results() const { return m_results; }

public Q_SLOTS:
    void respond(uint code, const QVariantMap& results);

private:
    std::function<void()> m_onResponse;
    bool m_hasCome = false;
    uint m_code = 0;
    QVariantMap m_results;
};

}  // namespace corvellan
