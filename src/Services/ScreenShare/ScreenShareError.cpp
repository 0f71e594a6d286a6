#include "ScreenShareError.h"

namespace corvellan {

using namespace Qt::StringLiterals;

QString ScreenShareError::errorDescription() const {
    switch (kind) {
    case Kind::uploadStatus: return u"Frame upload HTTP %1"_s.arg(status);
    case Kind::noDisplay: return u"No display available for capture"_s;
    }
    Q_UNREACHABLE();
}

}  // namespace corvellan
