#include "Diagnostics.h"

#include <algorithm>
#include <cmath>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace corvellan {

void LatencyHistogram::record(std::chrono::nanoseconds duration) {
    const auto nanoseconds = static_cast<std::uint64_t>(std::max<std::int64_t>(duration.count(), 1));
    const double octavesAboveMicrosecond = std::log2(static_cast<double>(nanoseconds) / 1000.0);
    const auto index = static_cast<int>(octavesAboveMicrosecond * bucketsPerOctave);
    m_buckets[static_cast<std::size_t>(std::clamp(index, 0, static_cast<int>(m_buckets.size()) - 1))].fetch_add(
        1, std::memory_order_relaxed);
    auto highest = m_maxNanoseconds.load(std::memory_order_relaxed);
    while (highest < nanoseconds &&
           !m_maxNanoseconds.compare_exchange_weak(highest, nanoseconds, std::memory_order_relaxed)) {
    }
}

LatencyHistogram::Figures LatencyHistogram::figures() const {
    Figures figures;
    std::array<std::uint64_t, bucketsPerOctave * octaves> counts{};
    for (std::size_t i = 0; i < counts.size(); ++i) {
        counts[i] = m_buckets[i].load(std::memory_order_relaxed);
        figures.count += counts[i];
    }
    const auto quantile = [&](double part) {
        const auto rank = static_cast<std::uint64_t>(std::ceil(part * static_cast<double>(figures.count)));
        std::uint64_t seen = 0;
        for (std::size_t i = 0; i < counts.size(); ++i) {
            seen += counts[i];
            if (seen >= rank && counts[i] > 0)
                // The bucket's upper edge: never better than what was measured.
                return std::exp2(static_cast<double>(i + 1) / bucketsPerOctave) / 1000.0;
        }
        return 0.0;
    };
    if (figures.count > 0) {
        figures.maxMs = static_cast<double>(m_maxNanoseconds.load(std::memory_order_relaxed)) / 1e6;
        figures.medianMs = std::min(quantile(0.5), figures.maxMs);
        figures.p99Ms = std::min(quantile(0.99), figures.maxMs);
    }
    return figures;
}

namespace {

QJsonObject json(const LatencyHistogram& histogram) {
    const auto figures = histogram.figures();
    return {{u"count"_s, static_cast<double>(figures.count)},
            {u"median_ms"_s, figures.medianMs},
            {u"p99_ms"_s, figures.p99Ms},
            {u"max_ms"_s, figures.maxMs}};
}

double number(const Diagnostics::Counter& counter) {
    return static_cast<double>(counter.load(std::memory_order_relaxed));
}

QJsonObject json(const Diagnostics::Side& side) {
    return {{u"frames_captured"_s, number(side.framesCaptured)}, {u"bytes_captured"_s, number(side.bytesCaptured)},
            {u"bytes_muted"_s, number(side.bytesMuted)},         {u"bytes_accepted"_s, number(side.bytesAccepted)},
            {u"bytes_sent"_s, number(side.bytesSent)},           {u"bytes_lost"_s, number(side.bytesLost)},
            {u"frames_sent"_s, number(side.framesSent)},         {u"utterances"_s, number(side.utterances)},
            {u"reopenings"_s, number(side.reopenings)},          {u"overhead"_s, json(side.overhead)}};
}

}  // namespace

QByteArray Diagnostics::json() const {
    const QJsonObject object{
        {u"mic"_s, corvellan::json(mic)},
        {u"system"_s, corvellan::json(system)},
        {u"messages_received"_s, number(messagesReceived)},
        {u"messages_dropped"_s, number(messagesDropped)},
        {u"tips"_s, number(tips)},
        {u"records_stored"_s, number(recordsStored)},
        {u"tip_to_handler"_s, corvellan::json(tipToHandler)},
        {u"tip_to_screen"_s, corvellan::json(tipToScreen)},
        {u"first_frame_microseconds"_s, static_cast<double>(firstFrameMicroseconds.load())},
        {u"store_ready_microseconds"_s, static_cast<double>(storeReadyMicroseconds.load())},
    };
    return QJsonDocument{object}.toJson(QJsonDocument::Compact);
}

}  // namespace corvellan
