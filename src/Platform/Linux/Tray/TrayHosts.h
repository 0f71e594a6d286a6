#pragma once

#include <cstdint>
#include <memory>
#include <QAbstractNativeEventFilter>
#include <QObject>

class QDBusPendingCallWatcher;
struct xcb_connection_t;

namespace corvellan {

/// The two kinds of tray that a Linux desktop may have, and word when one comes: a panel may start after the
/// program, end, and start anew. Needs the QGuiApplication and goes before it. Main thread.
class TrayHosts final : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    TrayHosts();
    ~TrayHosts() override;
    TrayHosts(const TrayHosts&) = delete;
    TrayHosts& operator=(const TrayHosts&) = delete;

    /// False where there is neither a session bus nor an X server: then no tray ever comes.
    [[nodiscard]] bool arePossible() const;
    /// The bus has told whether there is a host; until then, nobody knows.
    [[nodiscard]] bool isNotifierHostKnown() const { return m_isNotifierHostKnown; }
    /// Somebody shows items of the StatusNotifier kind, which live on D-Bus.
    [[nodiscard]] bool hasNotifierHost() const { return m_hasNotifierHost; }
    /// Somebody takes in windows of the XEmbed kind. Asks the X server.
    [[nodiscard]] bool hasEmbeddingTray() const;

Q_SIGNALS:
    /// A tray has come, or a host of the bus has gone, or the bus has answered for the first time.
    void changed();

private Q_SLOTS:
    void askForNotifierHost();

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    void watchBus();
    void watchDisplay();
    void setNotifierHost(bool isThere);

    bool m_hasBus = false;
    bool m_isNotifierHostKnown = false;
    bool m_hasNotifierHost = false;
    /// The latest question only: what an older one answers is out of date.
    std::unique_ptr<QDBusPendingCallWatcher> m_question;

    /// Null where there is no X server.
    xcb_connection_t* m_display = nullptr;
    std::uint32_t m_managerAtom = 0;
    std::uint32_t m_trayAtom = 0;
};

}  // namespace corvellan
