#include <benchmark/benchmark.h>
#include <simdjson.h>
#include <nlohmann/json.hpp>

#include "Models/Protocol.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

BuyerDisc buyer() {
    return {DiscType::dominant, DiscConfidence::high, u"short answers, asks for numbers"_s};
}

/// A tip with everything that a server sends along in the middle of a call.
QByteArray coachingBytes() {
    const MeddicScore meddic{.metrics = true, .economicBuyer = true, .identifyPain = true};
    const CallStateSnapshot state{
        .callStage = CallStage::objectionHandling,
        .meddicScore = 3,
        .meddic = meddic,
        .disc = buyer(),
        .sentiment = CustomerSentiment::skeptical,
        .meddicEvidence =
            std::vector<std::optional<QString>>{u"We lose four hours a week"_s, u"Dana signs"_s, std::nullopt,
                                                std::nullopt, u"Audits fail"_s, std::nullopt},
        .callPhase = u"Handling the price objection"_s};
    return ServerMsg{CoachingPayload{.message = u"Ask what the delay costs them each week"_s,
                                     .coachingType = CoachingType::objectionHandler,
                                     .urgency = CoachingUrgency::high,
                                     .productHint = u"Audit trail"_s,
                                     .state = state}}
        .encode()
        .value();
}

/// The summary of a long call: two thousand lines, some of them beyond ASCII.
QByteArray summaryBytes() {
    constexpr int lines = 2000;
    SummaryPayload summary{.durationSecs = 7200, .turns = lines, .disc = buyer(), .callId = u"c-1"_s};
    for (int i = 0; i < 10; ++i)
        summary.coachingPoints << u"Point %1: name the next step before the call ends"_s.arg(i);
    for (int i = 0; i < lines; ++i)
        summary.transcript << (i % 2 == 0 ? u"[Mic] "_s : u"[Audio] "_s) +
                                  u"Zeile %1: what would it mean for Müller & Söhne if audits took an hour?"_s.arg(i);
    return ServerMsg{std::move(summary)}.encode().value();
}

void decode(benchmark::State& state, const QByteArray& bytes) {
    for (auto _ : state)
        benchmark::DoNotOptimize(ServerMsg::decode(bytes));
    state.SetBytesProcessed(state.iterations() * bytes.size());
}

void parseWithNlohmann(benchmark::State& state, const QByteArray& bytes) {
    for (auto _ : state)
        benchmark::DoNotOptimize(nlohmann::json::parse(bytes.cbegin(), bytes.cend()));
    state.SetBytesProcessed(state.iterations() * bytes.size());
}

void parseWithSimdjson(benchmark::State& state, const QByteArray& bytes) {
    simdjson::dom::parser parser;
    for (auto _ : state) {
        // Bytes from a socket carry no padding, so that the copy belongs to the work.
        auto root = parser.parse(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        benchmark::DoNotOptimize(root);
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
}

const auto text = u"Could you walk me through how you handle the audit today, step by step?"_s;

void encodeTranscript(benchmark::State& state) {
    const ClientMsg message{ClientMsg::Transcript{AudioSourceTag::system, text}};
    for (auto _ : state)
        benchmark::DoNotOptimize(message.encode());
}

void encodeTranscriptWithNlohmann(benchmark::State& state) {
    const auto utf8 = text.toStdString();
    for (auto _ : state) {
        const nlohmann::ordered_json json{{"type", "transcript"}, {"source", "system"}, {"text", utf8}};
        benchmark::DoNotOptimize(json.dump());
    }
}

}  // namespace

BENCHMARK_CAPTURE(decode, coaching, coachingBytes())->Name("DecodeCoaching/ours");
BENCHMARK_CAPTURE(parseWithNlohmann, coaching, coachingBytes())->Name("DecodeCoaching/peer:nlohmann-json (parse only)");
BENCHMARK_CAPTURE(parseWithSimdjson, coaching, coachingBytes())->Name("DecodeCoaching/peer:simdjson (parse only)");

BENCHMARK_CAPTURE(decode, summary, summaryBytes())->Name("DecodeLongSummary/ours");
BENCHMARK_CAPTURE(parseWithNlohmann, summary, summaryBytes())
    ->Name("DecodeLongSummary/peer:nlohmann-json (parse only)");
BENCHMARK_CAPTURE(parseWithSimdjson, summary, summaryBytes())->Name("DecodeLongSummary/peer:simdjson (parse only)");

BENCHMARK(encodeTranscript)->Name("EncodeTranscript/ours");
BENCHMARK(encodeTranscriptWithNlohmann)->Name("EncodeTranscript/peer:nlohmann-json");

}  // namespace corvellan
