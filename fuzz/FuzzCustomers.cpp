#include <cstddef>
#include <cstdint>
#include <QJsonDocument>

#include "Models/Briefing.h"
#include "RoundTrip.h"
#include "Sandbox/CustomerBook.h"

using namespace corvellan;
using sandbox::CustomerBook;

namespace {

QByteArray json(const QJsonObject& object) {
    return QJsonDocument{object}.toJson(QJsonDocument::Compact);
}

template <typename Decode>
void expectDecodes(const QJsonObject& sent, Decode decode) {
    if (!decode(json(sent)))
        fuzz::fail("an answer that no client can read", json(sent));
}

}  // namespace

/// The file of customers: whatever it takes goes out in answers that clients can read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto book = CustomerBook::parse({reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)});
    if (!book) {
        if (book.error().isEmpty())
            fuzz::fail("an error without a sentence", {});
        return 0;
    }
    const WallTime now{std::chrono::days{20'000}};
    expectDecodes({{QStringLiteral("events"), book->upcoming(QStringLiteral("u"), {}, now, 100)}}, decodeEvents);
    for (const auto& customer : book->customers()) {
        expectDecodes({{QStringLiteral("matches"), book->search(customer.name, 50)}}, decodeMatches);
        expectDecodes(customer.brief, SalesBrief::decode);
        if (customer.handoff)
            expectDecodes(*customer.handoff, HandoffResponse::decode);
        expectDecodes(CustomerBook::timeline(customer, {}, QStringLiteral("i"), 3650, now), TimelineResponse::decode);
    }
    return 0;
}
