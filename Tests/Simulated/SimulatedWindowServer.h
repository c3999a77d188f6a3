#pragma once

#include "Platform/WindowServer.h"
#include "Simulated/DesktopModel.h"

namespace quillon::simulated {

/// The window list of the model's windows.
class SimulatedWindowServer final : public WindowServer {
public:
    explicit SimulatedWindowServer(const DesktopModel& model) : model(model) {}

    [[nodiscard]] std::optional<std::vector<WindowDescription>> copyWindowInfo(WindowListOption options,
                                                                               WindowID relativeTo) const override;

    /// While set, every call yields nothing.
    void setFailing(bool fails) { isFailing = fails; }

private:
    const DesktopModel& model;
    bool isFailing = false;
};

} // namespace quillon::simulated
