#pragma once

#include "Platform/TitledWindow.h"

#include <optional>
#include <string>
#include <vector>

namespace quillon::contract {

/// Looks at the program's own windows and uses their controls, as the user does. Rows are named by their titles, which
/// differ within a window, and so do the buttons' titles. Every action is complete, as far as the desktop is concerned,
/// when it returns; what it leads to is awaited.
class WindowUser {
public:
    WindowUser() = default;
    WindowUser(const WindowUser&) = delete;
    WindowUser& operator=(const WindowUser&) = delete;
    virtual ~WindowUser() = default;

    /// All texts, those that are scrolled away too, from top to bottom: of a row its title, its note, and then its
    /// items or the option that its picker shows, from the leading to the trailing edge.
    [[nodiscard]] virtual std::vector<std::string> texts(TitledWindow& window) = 0;
    [[nodiscard]] virtual bool isOn(TitledWindow& window, const std::string& row) = 0;
    /// The row whose control has the keyboard focus; none when no control of a row has it.
    [[nodiscard]] virtual std::optional<std::string> focusedRow(TitledWindow& window) = 0;

    virtual void press(TitledWindow& window, const std::string& button) = 0;
    virtual void turnSwitch(TitledWindow& window, const std::string& row, bool on) = 0;
    virtual void choose(TitledWindow& window, const std::string& row, const std::string& option) = 0;
    /// Moves the keyboard focus to the row's first control.
    virtual void focus(TitledWindow& window, const std::string& row) = 0;
    virtual void clickCloseButton(TitledWindow& window) = 0;
};

} // namespace quillon::contract
