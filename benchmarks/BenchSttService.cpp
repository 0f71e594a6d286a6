#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <QCoreApplication>
#include <QEventLoop>
#include <QWebSocket>
#include <QWebSocketServer>
#include <vector>

#include "Services/SttService.h"
#include "Services/SttWire.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

// What usually gathers between two batches.
const QByteArray batch(5760, '\x5a');

/// The real clock, but for leaps of 100 ms, so that every chunk makes a batch leave at once.
class LeapingClock final : public Clock {
public:
    void leap() { m_leaps.fetch_add(1, std::memory_order_relaxed); }

    [[nodiscard]] MonotonicTime now() const override {
        return m_system.now() + 100ms * m_leaps.load(std::memory_order_relaxed);
    }
    [[nodiscard]] WallTime wallNow() const override { return m_system.wallNow(); }
    TimerId callAt(MonotonicTime deadline, std::function<void()> due) override {
        return m_system.callAt(deadline, std::move(due));
    }
    void cancel(TimerId timer) override { m_system.cancel(timer); }

private:
    SystemClock m_system;
    std::atomic<int> m_leaps = 0;
};

/// Takes everything and answers nothing, on a thread of its own.
class Sink {
public:
    Sink() : m_thread("sink") {
        runAndWait(m_thread.executor(), [this] {
            m_server.emplace(QString{}, QWebSocketServer::NonSecureMode);
            m_server->listen(QHostAddress::LocalHost);
            QObject::connect(&*m_server, &QWebSocketServer::newConnection, &*m_server,
                             [this] { m_clients.emplace_back(m_server->nextPendingConnection()); });
            m_url = m_server->serverUrl();
        });
    }
    ~Sink() {
        runAndWait(m_thread.executor(), [this] {
            m_clients.clear();
            m_server.reset();
        });
    }

    [[nodiscard]] QUrl url() const { return m_url; }

private:
    WorkerThread m_thread;
    std::optional<QWebSocketServer> m_server;
    std::vector<std::unique_ptr<QWebSocket>> m_clients;
    QUrl m_url;
};

void spinUntilEnd(const QCoro::Task<void>& task) {
    while (!task.isReady())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

/// From the pump's thread to the socket's and back, as in a call.
void sendThroughTheService(benchmark::State& state) {
    const Sink sink;
    LeapingClock clock;
    const WorkerThread live{"live"};
    Diagnostics::Side side;
    SttService stt{live.executor(), clock, side, sink.url().toString()};
    spinUntilEnd(stt.connect(u"token"_s, std::nullopt));
    for (auto _ : state) {
        clock.leap();
        spinUntilEnd(stt.sendAudio({.pcm = batch, .deliveredAt = clock.now()}));
    }
    const auto overhead = side.overhead.figures();
    state.counters["overhead_median_ms"] = overhead.medianMs;
    state.counters["overhead_p99_ms"] = overhead.p99Ms;
    spinUntilEnd(stt.disconnect());
}

void sendBare(benchmark::State& state) {
    const Sink sink;
    QWebSocket socket;
    QEventLoop connecting;
    QObject::connect(&socket, &QWebSocket::connected, &connecting, &QEventLoop::quit);
    socket.open(sink.url());
    connecting.exec();
    for (auto _ : state) {
        const QByteArray message = "{\"type\":\"input_audio_buffer.append\",\"audio\":\"" + batch.toBase64() + "\"}";
        socket.sendTextMessage(QString::fromLatin1(message));
        socket.flush();
        while (socket.bytesToWrite() > 0)
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
}

void writeAppend(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(sttwire::append(batch));
    state.SetBytesProcessed(state.iterations() * batch.size());
}

void writeAppendWithQt(benchmark::State& state) {
    for (auto _ : state) {
        const QByteArray message = "{\"type\":\"input_audio_buffer.append\",\"audio\":\"" + batch.toBase64() + "\"}";
        benchmark::DoNotOptimize(QString::fromLatin1(message));
    }
    state.SetBytesProcessed(state.iterations() * batch.size());
}

}  // namespace

BENCHMARK(writeAppend)->Name("WriteAudioMessage/ours");
BENCHMARK(writeAppendWithQt)->Name("WriteAudioMessage/peer:Qt's base64");
BENCHMARK(sendThroughTheService)->Name("SendAudioBatch/ours")->UseRealTime();
BENCHMARK(sendBare)->Name("SendAudioBatch/peer:bare QWebSocket, one thread")->UseRealTime();

}  // namespace corvellan

int main(int argc, char** argv) {
    QCoreApplication application{argc, argv};
    const corvellan::EventLoopExecutor executor;
    corvellan::setLogSink([](const corvellan::LogLine&) {});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
