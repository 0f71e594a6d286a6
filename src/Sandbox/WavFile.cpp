#include "WavFile.h"

#include <algorithm>
#include <cstring>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 headerBytes = 44;

template <typename T>
void put(QByteArray& bytes, T value) {
    const T little = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char*>(&little), sizeof little);
}

QByteArray header(int sampleRateHertz, quint32 dataBytes) {
    QByteArray bytes{"RIFF"};
    put<quint32>(bytes, dataBytes + headerBytes - 8);
    bytes += "WAVEfmt ";
    put<quint32>(bytes, 16);
    put<quint16>(bytes, 1);  // PCM
    put<quint16>(bytes, 1);
    put<quint32>(bytes, sampleRateHertz);
    put<quint32>(bytes, sampleRateHertz * 2);
    put<quint16>(bytes, 2);
    put<quint16>(bytes, 16);
    bytes += "data";
    put<quint32>(bytes, dataBytes);
    return bytes;
}

template <typename T>
T get(const QByteArray& bytes, qsizetype at) {
    return qFromLittleEndian<T>(bytes.constData() + at);
}

std::unexpected<Error> failure(const QString& message) {
    return std::unexpected(Error{TransportError{message}});
}

}  // namespace

std::expected<WavWriter, Error> WavWriter::create(const QString& path, int sampleRateHertz) {
    QDir{}.mkpath(QFileInfo{path}.absolutePath());
    auto file = std::make_unique<QFile>(path);
    if (!file->open(QIODevice::WriteOnly | QIODevice::Truncate))
        return failure(u"Cannot write %1: %2"_s.arg(path, file->errorString()));
    file->write(header(sampleRateHertz, 0));
    file->flush();
    return WavWriter{std::move(file)};
}

WavWriter::WavWriter(std::unique_ptr<QFile> file) : m_file(std::move(file)) {}
WavWriter::WavWriter(WavWriter&&) noexcept = default;
WavWriter& WavWriter::operator=(WavWriter&&) noexcept = default;
WavWriter::~WavWriter() = default;

bool WavWriter::append(const QByteArray& pcm) {
    bool isWritten = m_file->seek(m_file->size()) && m_file->write(pcm) == pcm.size();
    const auto dataBytes = static_cast<quint32>(m_file->size() - headerBytes);
    QByteArray riffSize;
    put<quint32>(riffSize, dataBytes + headerBytes - 8);
    QByteArray dataSize;
    put<quint32>(dataSize, dataBytes);
    isWritten = isWritten && m_file->seek(4) && m_file->write(riffSize) == riffSize.size();
    isWritten = isWritten && m_file->seek(headerBytes - 4) && m_file->write(dataSize) == dataSize.size();
    return m_file->flush() && isWritten;
}

QString WavWriter::path() const {
    return m_file->fileName();
}

std::expected<WavAudio, Error> readWav(const QString& path) {
    QFile file{path};
    if (!file.open(QIODevice::ReadOnly))
        return failure(u"Cannot read %1: %2"_s.arg(path, file.errorString()));
    auto audio = decodeWav(file.readAll());
    if (!audio)
        return failure(path + u": "_s + audio.error().errorDescription());
    return audio;
}

std::expected<WavAudio, Error> decodeWav(const QByteArray& bytes) {
    if (bytes.size() < 12 || !bytes.startsWith("RIFF") || bytes.sliced(8, 4) != "WAVE")
        return failure(u"not a WAV file"_s);
    int channels = 0;
    WavAudio audio;
    qsizetype at = 12;
    while (at + 8 <= bytes.size()) {
        const QByteArray name = bytes.sliced(at, 4);
        const qsizetype claimed = get<quint32>(bytes, at + 4);
        at += 8;
        const qsizetype length = std::min(claimed, bytes.size() - at);
        if (name == "fmt ") {
            if (length < 16 || get<quint16>(bytes, at) != 1 || get<quint16>(bytes, at + 14) != 16)
                return failure(u"not 16-bit PCM"_s);
            channels = get<quint16>(bytes, at + 2);
            audio.sampleRateHertz = static_cast<int>(std::min<quint32>(get<quint32>(bytes, at + 4), 1'000'000));
            if (channels == 0 || audio.sampleRateHertz == 0)
                return failure(u"no channels or no sample rate"_s);
        } else if (name == "data") {
            if (channels == 0)
                return failure(u"audio before its format"_s);
            const qsizetype frames = length / 2 / channels;
            audio.samples.reserve(frames);
            for (qsizetype frame = 0; frame < frames; ++frame) {
                int sum = 0;
                for (int channel = 0; channel < channels; ++channel)
                    sum += get<qint16>(bytes, at + (frame * channels + channel) * 2);
                audio.samples.push_back(static_cast<std::int16_t>(sum / channels));
            }
            return audio;
        }
        at += length + (length & 1);
    }
    return failure(u"no audio in it"_s);
}

}  // namespace corvellan::sandbox
