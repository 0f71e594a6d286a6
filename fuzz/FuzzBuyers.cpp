#include <cstddef>
#include <cstdint>
#include <QJsonDocument>

#include "Models/Briefing.h"
#include "RoundTrip.h"
#include "Sandbox/Buyer.h"
#include "Sandbox/BuyerBook.h"

using namespace corvellan;
using namespace Qt::StringLiterals;

/// The file of buyers: whatever it takes goes out in a list that clients read, and can be talked with.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto book = sandbox::BuyerBook::parse({reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)});
    if (!book) {
        if (book.error().isEmpty())
            fuzz::fail("an error without a sentence", {});
        return 0;
    }
    const QByteArray list = QJsonDocument{book->scenarioList()}.toJson(QJsonDocument::Compact);
    if (!ScenariosResponse::decode(list))
        fuzz::fail("a list that no client can read", list);
    for (const auto& scenario : book->scenarios()) {
        sandbox::Buyer buyer{*book, scenario, std::nullopt, 1};
        static_cast<void>(buyer.opening());
        for (const QString& text : {u"What bothers you?"_s, u"Do you plan?"_s, u"Who signs off?"_s, u"What budget?"_s,
                                    u"Our product is the best."_s, u"Shall we meet on Thursday?"_s, scenario.name})
            static_cast<void>(buyer.hear(text));
    }
    return 0;
}
