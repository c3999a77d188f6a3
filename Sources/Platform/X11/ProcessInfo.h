#pragma once

#include "InputRouting.h"
#include "Platform/ProcessInfo.h"

namespace quillon::x11 {

class X11ProcessInfo final : public ProcessInfo {
public:
    explicit X11ProcessInfo(InputRouting inputRouting) : inputRouting(inputRouting) {}

    [[nodiscard]] ProcessID processIdentifier() const override;
    [[nodiscard]] std::string processName() const override;
    [[nodiscard]] OperatingSystemVersion operatingSystemVersion() const override;
    [[nodiscard]] std::optional<std::string> bundleIdentifier() const override;

private:
    InputRouting inputRouting;
};

} // namespace quillon::x11
