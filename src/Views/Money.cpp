#include "Money.h"

#include "Base/Text.h"

namespace corvellan {

using namespace Qt::StringLiterals;

QString formatUSD(double value) {
    constexpr double million = 1'000'000;
    constexpr double thousand = 1'000;
    if (value >= million)
        return u'$' + text::fixed(value / million, 1) + u'M';
    if (value >= thousand)
        return u'$' + text::fixed(value / thousand, 0) + u'K';
    return u'$' + text::fixed(value, 0);
}

}  // namespace corvellan
