#pragma once

#include <deque>
#include <QImage>

#include "Platform/ScreenPictures.h"

namespace corvellan::test {

/// Hands out pictures of the test's making, one a call; without one it fails.
class FakeScreenPictures final : public ScreenPictures {
public:
    QCoro::Task<std::expected<QImage, Error>> takePicture(std::stop_token /*stop*/) override {
        ++taken;
        if (m_pictures.empty())
            co_return std::unexpected(Error{TransportError{QStringLiteral("The desktop said no.")}});
        const QImage picture = m_pictures.front();
        m_pictures.pop_front();
        co_return picture;
    }

    void give(const QImage& picture) { m_pictures.push_back(picture); }

    /// A screen with something on it.
    static QImage desktop(QSize size = {320, 240}) {
        QImage picture{size, QImage::Format_RGB32};
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                picture.setPixel(x, y, qRgb(x % 256, y % 256, (x / 7 + y / 3) % 256));
        return picture;
    }

    int taken = 0;

private:
    std::deque<QImage> m_pictures;
};

}  // namespace corvellan::test
