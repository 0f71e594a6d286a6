#include "Error.h"

using namespace Qt::StringLiterals;

namespace corvellan {

Error Error::cancelled() {
    return CancelledError{};
}

QString CancelledError::errorDescription() const {
    return u"The operation was cancelled"_s;
}

}  // namespace corvellan
