#pragma once

#include <expected>

#include "Base/Error.h"

namespace corvellan {

/// The desktop's list of programs that start with the session, as far as it concerns this one. Main thread.
class LoginItems {
public:
    virtual ~LoginItems() = default;

    [[nodiscard]] virtual bool isEnabled() const = 0;
    virtual std::expected<void, Error> registerItem() = 0;
    virtual std::expected<void, Error> unregisterItem() = 0;
};

}  // namespace corvellan
