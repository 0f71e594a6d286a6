#include <benchmark/benchmark.h>
#include <turbojpeg.h>

#include <cstring>
#include <memory>
#include <QImage>
#include <random>
#include <vector>

#include "Services/ScreenShare/FrameHash.h"
#include "Services/ScreenShare/FrameJpeg.h"

namespace corvellan {

namespace {

constexpr float uploadedSide = 1280;
constexpr float anySide = 65'535;
constexpr float quality = 0.7F;
constexpr int qualityPercent = 70;

/// A large screen with a document on the left and a picture on the right.
const QImage& frame() {
    static const QImage made = [] {
        std::mt19937 random{1};
        QImage image{3840, 2160, QImage::Format_RGB32};
        for (int y = 0; y < image.height(); ++y) {
            auto* const line = reinterpret_cast<QRgb*>(image.scanLine(y));
            for (int x = 0; x < image.width(); ++x) {
                const bool isInk = y % 40 < 18 && (random() % 5U) == 0;
                const int light = static_cast<int>((x + y) / 24 + random() % 9U) % 256;
                line[x] = x < 2400 ? (isInk ? 0xFF202020U : 0xFFFFFFFFU) : qRgb(light, light / 2, 255 - light);
            }
        }
        return image;
    }();
    return made;
}

void hashOurs(benchmark::State& state) {
    const QImage& picture = frame();
    for (auto iteration : state)
        benchmark::DoNotOptimize(dHash(picture));
}
BENCHMARK(hashOurs)->Name("Hash of a 4K frame/ours")->Unit(benchmark::kMillisecond);

void hashScaler(benchmark::State& state) {
    const QImage& picture = frame();
    for (auto iteration : state) {
        const QImage small = picture.scaled(9, 8, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                 .convertToFormat(QImage::Format_Grayscale8);
        benchmark::DoNotOptimize(small.constBits());
    }
}
BENCHMARK(hashScaler)->Name("Hash of a 4K frame/peer:Qt, scaling alone")->Unit(benchmark::kMillisecond);

void hashCopy(benchmark::State& state) {
    const QImage& picture = frame();
    std::vector<uchar> copy(static_cast<std::size_t>(picture.sizeInBytes()));
    for (auto iteration : state) {
        std::memcpy(copy.data(), picture.constBits(), copy.size());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(hashCopy)->Name("Hash of a 4K frame/peer:copy of its bytes")->Unit(benchmark::kMillisecond);

void jpegOurs(benchmark::State& state, float longest) {
    const QImage& picture = frame();
    for (auto iteration : state)
        benchmark::DoNotOptimize(encodeJPEG(picture, longest, quality));
}

/// What is in memory already, with the subsampling that Qt's writer has too.
void jpegAlone(benchmark::State& state, float longest) {
    const QImage picture = resizeIfNeeded(frame(), longest).value_or(frame());
    const std::unique_ptr<void, decltype(&tjDestroy)> compressor{tjInitCompress(), &tjDestroy};
    unsigned char* file = nullptr;
    unsigned long length = 0;
    for (auto iteration : state) {
        if (tjCompress2(compressor.get(), picture.constBits(), picture.width(),
                        static_cast<int>(picture.bytesPerLine()), picture.height(), TJPF_BGRX, &file, &length,
                        TJSAMP_420, qualityPercent, TJFLAG_ACCURATEDCT) != 0) {
            state.SkipWithError("libjpeg-turbo refused the picture");
            break;
        }
        benchmark::DoNotOptimize(file);
    }
    tjFree(file);
}
BENCHMARK_CAPTURE(jpegOurs, uploaded, uploadedSide)
    ->Name("A 4K frame as it is uploaded/ours")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(jpegAlone, uploaded, uploadedSide)
    ->Name("A 4K frame as it is uploaded/peer:libjpeg-turbo, resized before")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(jpegOurs, whole, anySide)->Name("A 4K frame to JPEG/ours")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(jpegAlone, whole, anySide)
    ->Name("A 4K frame to JPEG/peer:libjpeg-turbo")
    ->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace corvellan
