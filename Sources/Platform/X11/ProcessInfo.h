#pragma once

#include "Platform/ProcessInfo.h"

namespace quillon::x11 {

class X11ProcessInfo final : public ProcessInfo {
public:
    [[nodiscard]] ProcessID processIdentifier() const override;
    [[nodiscard]] OperatingSystemVersion operatingSystemVersion() const override;
    [[nodiscard]] std::optional<std::string> bundleIdentifier() const override;
};

} // namespace quillon::x11
