// What any program in a Qt Quick window costs at least: an empty window of the same size with the same
// renderer. It prints the microseconds from the start of main to its first frame and then stays open.

#include <chrono>
#include <cstdio>
#include <QColor>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QSGRendererInterface>

int main(int argc, char** argv) {
    const auto start = std::chrono::steady_clock::now();
    QGuiApplication application{argc, argv};
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickWindow window;
    window.resize(700, 500);
    window.setColor(Qt::black);
    bool isFirst = true;
    QObject::connect(
        &window, &QQuickWindow::frameSwapped, &window,
        [&] {
            if (!std::exchange(isFirst, false))
                return;
            const auto passed = std::chrono::steady_clock::now() - start;
            std::printf("%lld\n",
                        static_cast<long long>(std::chrono::duration_cast<std::chrono::microseconds>(passed).count()));
            std::fflush(stdout);
        },
        Qt::DirectConnection);
    window.show();
    return QGuiApplication::exec();
}
