#pragma once

#include "Platform/LoopbackListener.h"

namespace corvellan {

/// Listeners on plain sockets. A client that ends its side of the connection before it has read the answer
/// still gets it, which Qt's own sockets can't do.
class SocketLoopbackListeners final : public LoopbackListeners {
public:
    [[nodiscard]] std::expected<std::unique_ptr<LoopbackListener>, Error> make() override;
};

}  // namespace corvellan
