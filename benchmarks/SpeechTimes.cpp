// Speaks what it is told on its standard input, so that ./bench can hear when it begins and when it ends. A line
// is "speak TEXT", a token that completes a sentence, or "stop". For each it prints the monotonic time in
// nanoseconds at which it was handed over; "ready" before the first, and "silent" whenever all has been spoken.

#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <QCoreApplication>
#include <QSocketNotifier>
#include <utility>

#include "Base/Clock.h"
#include "Base/Executor.h"
#include "Base/Log.h"
#include "Platform/Linux/Speech/EspeakSynthesizer.h"
#include "Platform/OwnSpeech.h"
#include "Services/Speech/TtsService.h"

namespace corvellan {

namespace {

using namespace Qt::StringLiterals;

constexpr QByteArrayView speakCommand = "speak ";

void print(const QByteArray& line) {
    std::printf("%s\n", line.constData());
    std::fflush(stdout);
}

class Speaker {
public:
    explicit Speaker(Executor& main) : m_tts(main, m_synthesizer) {
        m_tts.setOnPlayingChanged([this](bool isPlaying) {
            if (!isPlaying)
                print(std::exchange(m_isReady, true) ? "silent" : "ready");
        });
        // The voice is chosen, and the sound server greeted, by the time that this is over.
        m_tts.feedToken(u"Ready."_s);
        QObject::connect(&m_input, &QSocketNotifier::activated, &m_input, [this] { read(); });
    }

private:
    void read() {
        std::array<char, 4096> bytes{};
        const auto count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count <= 0) {
            QCoreApplication::quit();
            return;
        }
        m_pending.append(bytes.data(), count);
        for (auto end = m_pending.indexOf('\n'); end >= 0; end = m_pending.indexOf('\n')) {
            obey(m_pending.first(end));
            m_pending.remove(0, end + 1);
        }
    }

    void obey(const QByteArray& line) {
        const auto moment = std::chrono::steady_clock::now().time_since_epoch();
        if (line.startsWith(speakCommand))
            m_tts.feedToken(QString::fromUtf8(line.sliced(speakCommand.size())));
        else
            m_tts.stop();
        print(QByteArray::number(qint64{std::chrono::nanoseconds{moment}.count()}));
    }

    SystemClock m_clock;
    OwnSpeech m_ownSpeech;
    EspeakSynthesizer m_synthesizer{m_clock, m_ownSpeech, [](SpeechFailure) { print("failed"); }};
    TtsService m_tts;
    bool m_isReady = false;
    QSocketNotifier m_input{STDIN_FILENO, QSocketNotifier::Read};
    QByteArray m_pending;
};

}  // namespace

}  // namespace corvellan

int main(int argc, char** argv) {
    QCoreApplication application{argc, argv};
    corvellan::EventLoopExecutor executor;
    corvellan::setLogSink([](const corvellan::LogLine&) {});
    const corvellan::Speaker speaker{executor};
    return QCoreApplication::exec();
}
