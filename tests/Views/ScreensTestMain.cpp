#include <memory>
#include <QGuiApplication>
#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

#include "AccessibilityAudit.h"
#include "HandoffDriver.h"
#include "HistoryDriver.h"
#include "HomeDriver.h"
#include "ScreenDriver.h"
#include "TrainingDriver.h"
#include "Views/QuickSetup.h"

namespace corvellan::test {

/// What each QML test file's engine needs.
class Setup : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine* engine) {
        engine->addImportPath(QString::fromLatin1(qmlImportPath));
        m_driver = std::make_unique<ScreenDriver>();
        m_homeDriver = std::make_unique<HomeDriver>();
        engine->rootContext()->setContextProperty(QStringLiteral("driver"), m_driver.get());
        engine->rootContext()->setContextProperty(QStringLiteral("audit"), &m_audit);
        m_handoffDriver = std::make_unique<HandoffDriver>();
        engine->rootContext()->setContextProperty(QStringLiteral("handoffDriver"), m_handoffDriver.get());
        m_historyDriver = std::make_unique<HistoryDriver>();
        engine->rootContext()->setContextProperty(QStringLiteral("historyDriver"), m_historyDriver.get());
        engine->rootContext()->setContextProperty(QStringLiteral("homeDriver"), m_homeDriver.get());
        m_trainingDriver = std::make_unique<TrainingDriver>();
        engine->rootContext()->setContextProperty(QStringLiteral("trainingDriver"), m_trainingDriver.get());
    }
    void cleanupTestCase() {
        m_trainingDriver.reset();
        m_homeDriver.reset();
        m_historyDriver.reset();
        m_handoffDriver.reset();
        m_driver.reset();
    }

private:
    AccessibilityAudit m_audit;
    std::unique_ptr<ScreenDriver> m_driver;
    std::unique_ptr<HandoffDriver> m_handoffDriver;
    std::unique_ptr<HistoryDriver> m_historyDriver;
    std::unique_ptr<HomeDriver> m_homeDriver;
    std::unique_ptr<TrainingDriver> m_trainingDriver;
};

}  // namespace corvellan::test

int main(int argc, char** argv) {
    QGuiApplication application{argc, argv};
    corvellan::EventLoopExecutor main;
    corvellan::test::setMainExecutor(main);
    corvellan::prepareQuick();
    corvellan::test::Setup setup;
    return quick_test_main_with_setup(argc, argv, "Screens", nullptr, &setup);
}

#include "ScreensTestMain.moc"
