#pragma once

#include <chrono>
#include <QDBusConnection>
#include <QString>

class QObject;

namespace corvellan {

/// The program runs once in a desktop session: the first start takes a name on the session bus, a later
/// one asks the holder to come to the front, and ends. Main thread.
class SingleInstance {
public:
    enum class Outcome {
        first,        ///< The name is ours, or there is no bus to ask: go on.
        handedOver,   ///< Another instance has come to the front: end.
        unreachable,  ///< Another instance holds the name and doesn't answer: say so and end.
    };

    /// The name on the bus, which is the application's identifier too.
    static const QString name;
    static const QString path;

    /// \param patience how long another instance has to answer.
    explicit SingleInstance(QDBusConnection bus, std::chrono::milliseconds patience = std::chrono::seconds{3})
        : m_bus(std::move(bus)),
          m_patience(patience) {}

    /// Exports `object` with its adaptors and takes the name. Waits for the answer of an instance that has
    /// it.
    ///
    /// \param activationToken the desktop's proof that the user started this one; may be empty.
    [[nodiscard]] Outcome claim(QObject& object, const QString& activationToken);

private:
    [[nodiscard]] Outcome handOver(const QString& activationToken);

    QDBusConnection m_bus;
    std::chrono::milliseconds m_patience;
};

}  // namespace corvellan
