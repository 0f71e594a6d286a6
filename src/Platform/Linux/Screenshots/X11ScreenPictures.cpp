#include "X11ScreenPictures.h"

#include <algorithm>
#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <vector>

#include "Base/Executor.h"

namespace corvellan {

using namespace Qt::StringLiterals;

QCoro::Task<std::expected<QImage, Error>> X11ScreenPictures::takePicture(std::stop_token stop) {
    co_await Executor::current()->turn();
    if (stop.stop_requested())
        co_return std::unexpected(Error::cancelled());
    std::vector<QImage> screens;
    QSize size;
    for (QScreen* const screen : QGuiApplication::screens()) {
        QImage image = screen->grabWindow(0).toImage();
        if (image.isNull())
            co_return std::unexpected(Error{TransportError{u"The X server gave no picture of the screen."_s}});
        image.setDevicePixelRatio(1);
        size = {size.width() + image.width(), std::max(size.height(), image.height())};
        screens.push_back(std::move(image));
    }
    if (screens.empty())
        co_return std::unexpected(Error{TransportError{u"There is no screen."_s}});
    if (screens.size() == 1)
        co_return screens.front();
    QImage all{size, QImage::Format_RGB32};
    all.fill(Qt::black);
    QPainter painter{&all};
    int x = 0;
    for (const QImage& screen : screens) {
        painter.drawImage(x, 0, screen);
        x += screen.width();
    }
    painter.end();
    co_return all;
}

}  // namespace corvellan
