// What any program that sends one side of a call to a provider costs at least: 100 ms of audio at a time
// from the sound server, which resamples it, through base64 into a text frame. No levels, no events, no
// window.
//
//   BareAudioPipe sink                        a server that throws everything away; prints its URL
//   BareAudioPipe SOURCE URL SECONDS          one side; prints one JSON object and ends
//
// The object: "cpu_percent" of a core, "overhead_ms" from the buffer's delivery to the frame handed to the
// kernel, as "median" and "p99".

#include <pulse/simple.h>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <QCoreApplication>
#include <QWebSocket>
#include <QWebSocketServer>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t sampleRateHertz = 24'000;
constexpr std::size_t bufferBytes = sampleRateHertz / 10 * 2;

int serve() {
    QWebSocketServer server{QStringLiteral("sink"), QWebSocketServer::NonSecureMode};
    if (!server.listen(QHostAddress::LocalHost))
        return 1;
    QObject::connect(&server, &QWebSocketServer::newConnection, &server, [&server] {
        auto* const socket = server.nextPendingConnection();
        QObject::connect(socket, &QWebSocket::disconnected, socket, &QObject::deleteLater);
    });
    std::printf("%s\n", qPrintable(server.serverUrl().toString()));
    std::fflush(stdout);
    return QCoreApplication::exec();
}

double cpuSeconds() {
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

class Pipe {
public:
    Pipe(const char* source, const QUrl& url, int seconds) : m_source(source), m_left(seconds * 10) {
        QObject::connect(&m_socket, &QWebSocket::connected, &m_socket, [this] { start(); });
        m_socket.open(url);
    }
    ~Pipe() {
        m_isStopping = true;
        if (m_reader.joinable())
            m_reader.join();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

private:
    void start() {
        m_cpuAtStart = cpuSeconds();
        m_startedAt = Clock::now();
        m_reader = std::thread([this] { read(); });
    }

    void read() {
        const pa_sample_spec format{.format = PA_SAMPLE_S16LE, .rate = sampleRateHertz, .channels = 1};
        const pa_buffer_attr wish{.maxlength = static_cast<std::uint32_t>(-1),
                                  .tlength = static_cast<std::uint32_t>(-1),
                                  .prebuf = static_cast<std::uint32_t>(-1),
                                  .minreq = static_cast<std::uint32_t>(-1),
                                  .fragsize = bufferBytes};
        pa_simple* const record =
            pa_simple_new(nullptr, "bare pipe", PA_STREAM_RECORD, m_source, "side", &format, nullptr, &wish, nullptr);
        while (record && !m_isStopping) {
            QByteArray audio{static_cast<qsizetype>(bufferBytes), Qt::Uninitialized};
            if (pa_simple_read(record, audio.data(), bufferBytes, nullptr) < 0)
                break;
            const auto deliveredAt = Clock::now();
            QMetaObject::invokeMethod(
                &m_socket, [this, audio, deliveredAt] { send(audio, deliveredAt); }, Qt::QueuedConnection);
        }
        if (record)
            pa_simple_free(record);
        else
            QMetaObject::invokeMethod(&m_socket, [] { QCoreApplication::exit(1); }, Qt::QueuedConnection);
    }

    void send(const QByteArray& audio, Clock::time_point deliveredAt) {
        m_socket.sendTextMessage(QStringLiteral(R"({"type":"input_audio_buffer.append","audio":")") +
                                 QString::fromLatin1(audio.toBase64()) + QStringLiteral("\"}"));
        m_socket.flush();
        m_overheads.push_back(std::chrono::duration<double, std::milli>(Clock::now() - deliveredAt).count());
        if (--m_left == 0)
            finish();
    }

    void finish() {
        const double passed = std::chrono::duration<double>(Clock::now() - m_startedAt).count();
        std::ranges::sort(m_overheads);
        const auto quantile = [this](double part) {
            return m_overheads[std::min(m_overheads.size() - 1,
                                        static_cast<std::size_t>(part * static_cast<double>(m_overheads.size())))];
        };
        std::printf(R"({"cpu_percent": %.3f, "overhead_ms": {"median": %.3f, "p99": %.3f}})"
                    "\n",
                    100 * (cpuSeconds() - m_cpuAtStart) / passed, quantile(0.5), quantile(0.99));
        std::fflush(stdout);
        QCoreApplication::exit(0);
    }

    const char* m_source;
    QWebSocket m_socket;
    int m_left;
    double m_cpuAtStart = 0;
    Clock::time_point m_startedAt;
    std::vector<double> m_overheads;
    std::atomic<bool> m_isStopping = false;
    std::thread m_reader;
};

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application{argc, argv};
    if (argc == 2 && std::strcmp(argv[1], "sink") == 0)
        return serve();
    if (argc != 4) {
        std::fprintf(stderr, "BareAudioPipe sink | BareAudioPipe SOURCE URL SECONDS\n");
        return 2;
    }
    const Pipe pipe{argv[1], QUrl{QString::fromUtf8(argv[2])}, std::max(1, std::atoi(argv[3]))};
    return QCoreApplication::exec();
}
