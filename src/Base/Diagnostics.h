#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <QByteArray>

namespace corvellan {

/// Durations in fine buckets: 1.6 % wide, from a microsecond to over an hour. Recording is lock-free
/// and callable on any thread, audio call-backs included.
class LatencyHistogram {
public:
    struct Figures {
        std::uint64_t count = 0;
        double medianMs = 0;
        double p99Ms = 0;
        double maxMs = 0;
    };

    void record(std::chrono::nanoseconds duration);
    [[nodiscard]] Figures figures() const;

private:
    static constexpr int bucketsPerOctave = 44;
    static constexpr int octaves = 32;

    std::array<std::atomic<std::uint64_t>, bucketsPerOctave * octaves> m_buckets{};
    std::atomic<std::uint64_t> m_maxNanoseconds = 0;
};

/// What the program counts about itself, for the diagnostics page, the demo and the tests. One object
/// for the process; every member is callable on any thread.
struct Diagnostics {
    using Counter = std::atomic<std::uint64_t>;

    /// The audio path of one side.
    struct Side {
        Counter framesCaptured = 0;  ///< Frames that the sound server delivered, at the device's rate.
        Counter bytesCaptured = 0;   ///< PCM bytes handed to the session.
        Counter bytesMuted = 0;      ///< PCM bytes that the session held back on purpose.
        Counter bytesAccepted = 0;   ///< PCM bytes that the transcription client took.
        Counter bytesSent = 0;       ///< PCM bytes in frames handed to the socket.
        Counter bytesLost = 0;       ///< PCM bytes dropped: not connected, or their frame failed.
        Counter framesSent = 0;      ///< Append messages handed to the socket.
        Counter utterances = 0;      ///< Finished utterances delivered by the provider.
        Counter reopenings = 0;      ///< Device changes and lost sound servers that were followed.
        LatencyHistogram overhead;   ///< Buffer delivered to frame handed to the socket, batching left out.
    };

    Side mic;
    Side system;
    Counter messagesReceived = 0;  ///< Frames of the coaching server that decoded.
    Counter messagesDropped = 0;   ///< Frames that did not.
    Counter tips = 0;
    Counter recordsStored = 0;
    LatencyHistogram tipToHandler;                          ///< Message at the socket to state changed.
    LatencyHistogram tipToScreen;                           ///< Message at the socket to the frame that shows it.
    std::atomic<std::int64_t> firstFrameMicroseconds = -1;  ///< From the start of `main`; -1 until then.
    std::atomic<std::int64_t> storeReadyMicroseconds = -1;  ///< As above, for the index of the history.

    /// One JSON object: "mic" and "system" with the members of `Side`, the others beside them, in
    /// snake case; a histogram is an object of "count", "median_ms", "p99_ms" and "max_ms".
    [[nodiscard]] QByteArray json() const;
};

}  // namespace corvellan
