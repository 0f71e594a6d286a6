#pragma once

namespace corvellan {

/// Gets new versions of the program. Main thread.
class UpdaterProtocol {
public:
    virtual ~UpdaterProtocol() = default;

    /// Looks for a new version and shows the user what there is.
    virtual void checkForUpdates() = 0;
};

}  // namespace corvellan
