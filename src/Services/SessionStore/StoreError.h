#pragma once

#include <QString>

namespace corvellan {

/// Why the record store could not be opened, read or written.
struct StoreError {
    enum class Kind {
        newerSchema,  ///< Written by a newer version of this program; left as it is.
        damaged,      ///< No database, or one that contradicts itself.
        failed,       ///< Anything else: no space, no right, a busy file. `message` says.
    };

    Kind kind = Kind::failed;
    QString message;

    [[nodiscard]] QString errorDescription() const;
};

}  // namespace corvellan
