#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QFileInfo>
#include <QJSEngine>
#include <QObject>
#include <QStringList>

namespace corvellan::test {

/// One loaded script at its own path; running it runs it for real.
class FakeKWinScript final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.kwin.Script")

public:
    FakeKWinScript(QString text, QJSEngine& engine) : m_text(std::move(text)), m_engine(engine) {}

public Q_SLOTS:
    void run() { m_lastResult = m_engine.evaluate(m_text); }

public:
    [[nodiscard]] bool hasThrown() const { return m_lastResult.isError(); }

private:
    QString m_text;
    QJSEngine& m_engine;
    QJSValue m_lastResult;
};

/// What `callDBus` does in a script.
class FakeKWinCalls final : public QObject {
    Q_OBJECT

public:
    explicit FakeKWinCalls(QDBusConnection bus) : m_bus(std::move(bus)) {}

    bool isSilent = false;

public Q_SLOTS:
    void callDBus(const QString& service, const QString& path, const QString& interfaceName, const QString& method,
                  const QString& first, const QString& second) {
        if (isSilent)
            return;
        auto message = QDBusMessage::createMethodCall(service, path, interfaceName, method);
        message << first << second;
        m_bus.send(message);
    }

private:
    QDBusConnection m_bus;
};

/// A stand-in for KWin's scripting on a message bus: it takes scripts from files and runs them in a real
/// JavaScript engine, over windows of the test's making.
class FakeKWin final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.kwin.Scripting")

public:
    /// \param windows a JavaScript array.
    FakeKWin(QDBusConnection bus, const QString& windows) : calls(bus), m_bus(std::move(bus)) {
        setWindows(windows);
        m_engine.globalObject().setProperty(QStringLiteral("calls"), m_engine.newQObject(&calls));
        QJSEngine::setObjectOwnership(&calls, QJSEngine::CppOwnership);
        m_engine.evaluate(QStringLiteral("function callDBus(a, b, c, d, e, f) { calls.callDBus(a, b, c, d, e, f); }"));
        m_bus.registerObject(QStringLiteral("/Scripting"), this, QDBusConnection::ExportAllSlots);
        m_bus.registerService(QStringLiteral("org.kde.KWin"));
    }
    ~FakeKWin() override {
        m_bus.unregisterService(QStringLiteral("org.kde.KWin"));
        qDeleteAll(m_scripts);
    }

    void setWindows(const QString& windows) {
        m_engine.evaluate(
            QStringLiteral("var all = %1; var workspace = { %2: function() { return all; } };").arg(windows, listName));
    }
    [[nodiscard]] QJSValue evaluate(const QString& text) { return m_engine.evaluate(text); }

    FakeKWinCalls calls;
    /// What scripts are loaded under; negative refuses them.
    int nextId = 5;
    /// "/Scripting/Script%1" from Plasma 6 on, before that "/%1".
    QString scriptPath = QStringLiteral("/Scripting/Script%1");
    QString listName = QStringLiteral("windowList");
    QStringList loaded;
    QStringList unloaded;
    QStringList files;
    QFile::Permissions permissions;
    bool hasAnyThrown() const {
        return std::any_of(m_scripts.begin(), m_scripts.end(), [](const auto* script) { return script->hasThrown(); });
    }

public Q_SLOTS:
    int loadScript(const QString& path, const QString& name) {
        QFile file{path};
        if (!file.open(QIODevice::ReadOnly))
            return -1;
        files.append(path);
        permissions = file.permissions();
        loaded.append(name);
        const int id = nextId < 0 ? nextId : nextId++;
        if (id >= 0) {
            m_scripts.push_back(new FakeKWinScript{QString::fromUtf8(file.readAll()), m_engine});
            m_bus.registerObject(scriptPath.arg(id), m_scripts.back(), QDBusConnection::ExportAllSlots);
        }
        return id;
    }
    bool unloadScript(const QString& name) {
        unloaded.append(name);
        return loaded.contains(name);
    }

private:
    QDBusConnection m_bus;
    QJSEngine m_engine;
    std::vector<FakeKWinScript*> m_scripts;
};

}  // namespace corvellan::test
