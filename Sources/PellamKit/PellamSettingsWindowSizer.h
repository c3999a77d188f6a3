#pragma once

#include "HeldWeakly.h"
#include "Platform/Registration.h"
#include "Platform/TitledWindow.h"

#include <memory>

namespace quillon {

/// Keeps the settings window fitting its screen while displays come, go and change. Main thread.
class PellamSettingsWindowSizer : private HeldWeakly<PellamSettingsWindowSizer> {
    friend HeldWeakly<PellamSettingsWindowSizer>;

public:
    /// Holds the window weakly.
    explicit PellamSettingsWindowSizer(const std::shared_ptr<TitledWindow>& window);

    /// Gives the window the size that its content wants, as far as its screen has room, and moves it inside. Does
    /// nothing when the window is gone or there is no screen.
    void clamp() const;

private:
    void displaysChanged();

    std::weak_ptr<TitledWindow> window;
    RegistrationToken screenParametersObserver;
    RegistrationToken screenObserver;
};

} // namespace quillon
