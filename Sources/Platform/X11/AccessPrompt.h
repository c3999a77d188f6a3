#pragma once

#include "Platform/Registration.h"

#include <QDialog>

namespace quillon::x11 {

class AccessibilityStatus;
class PushButton;
class TextLabel;

/// The window that stands in for the system's question whether Quillon may use accessibility, which here is off for
/// the whole session: it says so and offers to switch it on. It takes no keyboard focus when it appears, and goes when
/// accessibility is on. Main thread.
class AccessPrompt final : public QDialog {
    Q_OBJECT

public:
    explicit AccessPrompt(AccessibilityStatus& status);
    ~AccessPrompt() override;

private:
    void offerToSwitchOn();
    void tellHowToGetIt();
    void allow();

    AccessibilityStatus& status;
    TextLabel* text;
    TextLabel* note;
    PushButton* closeButton;
    PushButton* allowButton;
    RegistrationToken statusChange;
};

} // namespace quillon::x11
