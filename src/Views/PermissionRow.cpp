#include "PermissionRow.h"

namespace corvellan {

using namespace Qt::StringLiterals;

QString PermissionRow::statusText() const {
    switch (status.value_or(PermissionStatus::unknown)) {
    case PermissionStatus::granted: return u"Granted"_s;
    case PermissionStatus::denied: return detail + u" — not allowed"_s;
    case PermissionStatus::unknown: return u"Not requested"_s;
    }
    Q_UNREACHABLE();
}

QString PermissionRow::statusColor() const {
    switch (status.value_or(PermissionStatus::unknown)) {
    case PermissionStatus::granted: return u"green"_s;
    case PermissionStatus::denied: return u"red"_s;
    case PermissionStatus::unknown: return u"gray"_s;
    }
    Q_UNREACHABLE();
}

}  // namespace corvellan
