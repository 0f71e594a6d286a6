#include "UtteranceFinder.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace corvellan::sandbox {

namespace {

constexpr int windowsPerSecond = 100;
constexpr int windowsPerFloorBlock = 50;
constexpr int windowsToBeginWith = 4;
constexpr double paddingSeconds = 0.2;
// What a client that never pauses may make this object keep.
constexpr double longestUtteranceSeconds = 120;

constexpr double floorMarginDecibels = 9;
constexpr double highestFloorLevelDecibels = -26;

double fromDecibels(double decibels) {
    return std::pow(10.0, decibels / 20.0);
}

}  // namespace

UtteranceFinder::UtteranceFinder(TurnDetection detection, int sampleRateHertz)
    : m_sampleRateHertz(sampleRateHertz),
      m_windowSamples(std::max(1, sampleRateHertz / windowsPerSecond)) {
    setTurnDetection(detection);
}

void UtteranceFinder::setTurnDetection(const TurnDetection& detection) {
    constexpr double quietestDecibels = -50;
    constexpr double rangeDecibels = 20;
    m_baseLevel = fromDecibels(quietestDecibels + rangeDecibels * std::clamp(detection.threshold, 0.0, 1.0));
    m_silenceSamples = detection.silence.count() * m_sampleRateHertz / 1000;
}

std::vector<SpeechEvent> UtteranceFinder::feed(std::span<const std::int16_t> samples) {
    std::vector<SpeechEvent> events;
    while (!samples.empty()) {
        const auto piece =
            samples.first(std::min(samples.size(), static_cast<std::size_t>(m_windowSamples - m_windowFill)));
        for (const std::int16_t sample : piece)
            m_windowEnergy += static_cast<double>(sample) * sample;
        m_windowFill += static_cast<int>(piece.size());
        m_pcm.append(reinterpret_cast<const char*>(piece.data()), static_cast<qsizetype>(piece.size_bytes()));
        samples = samples.subspan(piece.size());
        if (m_windowFill == m_windowSamples)
            takeWindow(events);
    }
    return events;
}

std::vector<SpeechEvent> UtteranceFinder::finish() {
    std::vector<SpeechEvent> events;
    if (m_isSpeaking)
        end(events);
    return events;
}

double UtteranceFinder::secondsSpoken() const {
    return m_isSpeaking ? static_cast<double>(samplesFed() - m_firstSample) / m_sampleRateHertz : 0;
}

void UtteranceFinder::takeWindow(std::vector<SpeechEvent>& events) {
    constexpr double fullScale = 32'768;
    const double rms = std::sqrt(m_windowEnergy / m_windowSamples) / fullScale;
    m_windowEnd += m_windowSamples;
    m_windowEnergy = 0;
    m_windowFill = 0;

    const double aboveFloor =
        std::min(m_floor * fromDecibels(floorMarginDecibels), fromDecibels(highestFloorLevelDecibels));
    const bool isLoud = rms > std::max(m_baseLevel, aboveFloor);
    follow(rms);

    m_recentLoud = ((m_recentLoud << 1) | (isLoud ? 1U : 0U)) & ((1U << recentWindows) - 1);
    const bool isActive = std::popcount(m_recentLoud) >= windowsToBeginWith;

    const auto padding = static_cast<std::int64_t>(paddingSeconds * m_sampleRateHertz);
    if (!m_isSpeaking && isActive) {
        const int windowsSinceFirst = std::bit_width(m_recentLoud);
        m_isSpeaking = true;
        m_firstSample = m_windowEnd - static_cast<std::int64_t>(windowsSinceFirst) * m_windowSamples;
        m_lastLoudEnd = m_windowEnd;
        events.emplace_back(SpeechStarted{m_firstSample});
    }
    if (!m_isSpeaking) {
        const auto keep = (padding + static_cast<std::int64_t>(recentWindows) * m_windowSamples) * 2;
        // In rare large steps: cutting a little off the front of a long array each time is slow.
        if (m_pcm.size() > 4 * keep)
            m_pcm = m_pcm.last(keep);
        return;
    }
    if (isActive && isLoud)
        m_lastLoudEnd = m_windowEnd;
    const auto longest = static_cast<std::int64_t>(longestUtteranceSeconds * m_sampleRateHertz);
    // Speech that sets in just before the time is over is noticed only a few windows later.
    const std::int64_t silent = m_windowEnd - m_lastLoudEnd;
    const bool mayGoOn = (m_recentLoud & ((1U << windowsToBeginWith) - 1)) != 0 &&
                         silent < m_silenceSamples + static_cast<std::int64_t>(windowsToBeginWith) * m_windowSamples;
    if (silent >= m_silenceSamples && !isActive && !mayGoOn)
        end(events);
    else if (m_windowEnd - m_firstSample >= longest)
        end(events);
}

void UtteranceFinder::follow(double rms) {
    m_floorMinimum = std::min(m_floorMinimum, rms);
    if (++m_floorFill < windowsPerFloorBlock)
        return;
    m_floors.at(m_floorIndex) = m_floorMinimum;
    m_floorIndex = (m_floorIndex + 1) % floorBlocks;
    m_floorFill = 0;
    m_floorMinimum = 1;
    m_floor = *std::ranges::min_element(m_floors);
}

void UtteranceFinder::end(std::vector<SpeechEvent>& events) {
    const auto padding = static_cast<std::int64_t>(paddingSeconds * m_sampleRateHertz);
    const std::int64_t kept = m_pcm.size() / 2;
    const std::int64_t bufferStart = samplesFed() - kept;
    const std::int64_t from = std::max(bufferStart, m_firstSample - padding);
    const std::int64_t to = std::min(samplesFed(), m_lastLoudEnd + padding);
    events.emplace_back(Utterance{.firstSample = m_firstSample,
                                  .endSample = m_lastLoudEnd,
                                  .pcm = m_pcm.mid((from - bufferStart) * 2, (to - from) * 2),
                                  .sampleRateHertz = m_sampleRateHertz});
    m_isSpeaking = false;
    m_recentLoud = 0;
    // What lies behind the utterance may be the beginning of the next.
    const std::int64_t keep = std::min(kept, samplesFed() - m_lastLoudEnd);
    m_pcm = m_pcm.last(keep * 2);
}

}  // namespace corvellan::sandbox
