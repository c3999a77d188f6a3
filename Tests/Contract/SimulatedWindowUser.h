#pragma once

#include "WindowUser.h"

namespace quillon::contract {

class SimulatedWindowUser final : public WindowUser {
public:
    [[nodiscard]] std::vector<std::string> texts(TitledWindow& window) override;
    [[nodiscard]] bool isOn(TitledWindow& window, const std::string& row) override;
    [[nodiscard]] std::optional<std::string> focusedRow(TitledWindow& window) override;
    void press(TitledWindow& window, const std::string& button) override;
    void turnSwitch(TitledWindow& window, const std::string& row, bool on) override;
    void choose(TitledWindow& window, const std::string& row, const std::string& option) override;
    void focus(TitledWindow& window, const std::string& row) override;
    void clickCloseButton(TitledWindow& window) override;
};

} // namespace quillon::contract
