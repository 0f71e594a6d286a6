#pragma once

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

    explicit SingleInstance(QDBusConnection bus) : m_bus(std::move(bus)) {}

    /// Exports `object` with its adaptors and takes the name. Waits up to 3 seconds for the answer of an
    /// instance that has it.
    ///
    /// \param activationToken the desktop's proof that the user started this one; may be empty.
    [[nodiscard]] Outcome claim(QObject& object, const QString& activationToken);

private:
    [[nodiscard]] Outcome handOver(const QString& activationToken);

    QDBusConnection m_bus;
};

}  // namespace corvellan
