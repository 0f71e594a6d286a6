#pragma once

#include <expected>
#include <memory>
#include <QByteArray>
#include <QString>
#include <span>
#include <vector>

#include "Base/Error.h"

class QFile;

namespace corvellan::sandbox {

/// A mono PCM16 WAV file that grows. Its header is right after every `append`, so that the file can
/// be read, copied or left behind at any time.
class WavWriter {
public:
    /// Makes or empties the file, with its folders. Fails when it cannot be written.
    [[nodiscard]] static std::expected<WavWriter, Error> create(const QString& path, int sampleRateHertz);

    WavWriter(WavWriter&&) noexcept;
    WavWriter& operator=(WavWriter&&) noexcept;
    ~WavWriter();

    /// False when the disk would not take it.
    bool append(const QByteArray& pcm);

    [[nodiscard]] QString path() const;

private:
    explicit WavWriter(std::unique_ptr<QFile> file);

    std::unique_ptr<QFile> m_file;
};

/// One file whole: PCM16, its channels mixed down to one.
struct WavAudio {
    int sampleRateHertz = 0;
    std::vector<std::int16_t> samples;
};

/// Reads 16-bit PCM. A data chunk that claims to be longer than the file (what programs write that
/// stream) reaches to the file's end.
[[nodiscard]] std::expected<WavAudio, Error> readWav(const QString& path);

/// As `readWav`, for bytes at hand.
[[nodiscard]] std::expected<WavAudio, Error> decodeWav(const QByteArray& bytes);

}  // namespace corvellan::sandbox
