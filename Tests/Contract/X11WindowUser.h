#pragma once

#include "WindowUser.h"
#include "World.h"

#include "XClient.h"

class QWidget;

namespace quillon::contract {

/// With a real pointer and a real keyboard; what is shown is read from Qt's widgets.
class X11WindowUser final : public WindowUser {
public:
    X11WindowUser(World& world, const e2e::XClient& client) : world(world), client(client) {}

    [[nodiscard]] std::vector<std::string> texts(TitledWindow& window) override;
    [[nodiscard]] bool isOn(TitledWindow& window, const std::string& row) override;
    [[nodiscard]] std::optional<std::string> focusedRow(TitledWindow& window) override;
    void press(TitledWindow& window, const std::string& button) override;
    void turnSwitch(TitledWindow& window, const std::string& row, bool on) override;
    void choose(TitledWindow& window, const std::string& row, const std::string& option) override;
    void focus(TitledWindow& window, const std::string& row) override;
    void clickCloseButton(TitledWindow& window) override;

    /// Turns the wheel a step downwards over the control.
    void turnWheel(QWidget& control) const;

private:
    /// Scrolls until the widget can be seen and puts the pointer on its middle.
    void pointAt(QWidget& control) const;
    void click(QWidget& control) const;
    void clickAtPointer(std::uint8_t button = 1) const;

    World& world;
    const e2e::XClient& client;
};

/// The row of that title in a window of the platform.
[[nodiscard]] QWidget& rowOf(TitledWindow& window, const std::string& title);

} // namespace quillon::contract
