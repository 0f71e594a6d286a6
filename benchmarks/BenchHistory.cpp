#include <benchmark/benchmark.h>
#include <simdjson.h>
#include <nlohmann/json.hpp>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include "Models/ServerCallRecord.h"

using namespace Qt::StringLiterals;

namespace corvellan {

namespace {

constexpr int calls = 200;

QJsonObject criterion(bool isConfirmed) {
    return {{u"confirmed"_s, isConfirmed}, {u"evidence"_s, u"We lose four hours a week on every audit"_s}};
}

/// The whole list that a history asks for, as its server writes it.
QByteArray listBytes() {
    QJsonArray list;
    for (int i = 0; i < calls; ++i)
        list.append(QJsonObject{
            {u"id"_s, QUuid::createUuid().toString(QUuid::WithoutBraces)},
            {u"session_id"_s, u"session-%1"_s.arg(i)},
            {u"mode"_s, i % 4 == 0 ? u"train"_s : u"live"_s},
            {u"company_name"_s, u"Müller & Söhne %1"_s.arg(i)},
            {u"started_at"_s, u"2026-03-%1T09:05:00.250Z"_s.arg(1 + i % 28, 2, 10, QChar{u'0'})},
            {u"ended_at"_s, u"2026-03-%1T09:45:00Z"_s.arg(1 + i % 28, 2, 10, QChar{u'0'})},
            {u"duration_sec"_s, 2400 + i},
            {u"turns"_s, 80},
            {u"meddic"_s, QJsonObject{{u"metrics"_s, criterion(true)},
                                      {u"economic_buyer"_s, criterion(false)},
                                      {u"champion"_s, criterion(i % 2 == 0)}}},
            {u"disc"_s,
             QJsonObject{{u"type"_s, u"steady"_s}, {u"confidence"_s, u"medium"_s}, {u"signals"_s, u"asks for time"_s}}},
            {u"coaching_points"_s, QJsonArray{u"Name the next step before the call ends"_s, u"Ask who signs"_s}},
            {u"outcome"_s, u"demo_booked"_s}});
    return QJsonDocument{list}.toJson(QJsonDocument::Compact);
}

const QByteArray& bytes() {
    static const QByteArray list = listBytes();
    return list;
}

void decodeList(benchmark::State& state) {
    for (auto _ : state) {
        auto decoded = decodeServerCalls(bytes());
        if (!decoded || decoded->size() != calls)
            state.SkipWithError("the list does not decode");
        benchmark::DoNotOptimize(decoded);
    }
    state.SetBytesProcessed(state.iterations() * bytes().size());
}

void makeRecords(benchmark::State& state) {
    const auto decoded = decodeServerCalls(bytes()).value();
    for (auto _ : state)
        for (const auto& call : decoded)
            benchmark::DoNotOptimize(call.toSessionRecord());
}

void parseWithNlohmann(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(nlohmann::json::parse(bytes().cbegin(), bytes().cend()));
}

void parseWithSimdjson(benchmark::State& state) {
    simdjson::dom::parser parser;
    for (auto _ : state) {
        auto root = parser.parse(bytes().constData(), static_cast<std::size_t>(bytes().size()));
        benchmark::DoNotOptimize(root);
    }
}

}  // namespace

BENCHMARK(decodeList)->Name("DecodeCallList/ours/200")->Unit(benchmark::kMicrosecond);
BENCHMARK(parseWithNlohmann)->Name("DecodeCallList/peer:nlohmann-json (parse only)/200")->Unit(benchmark::kMicrosecond);
BENCHMARK(parseWithSimdjson)->Name("DecodeCallList/peer:simdjson (parse only)/200")->Unit(benchmark::kMicrosecond);
BENCHMARK(makeRecords)->Name("RecordsOfCallList/ours/200")->Unit(benchmark::kMicrosecond);

}  // namespace corvellan
