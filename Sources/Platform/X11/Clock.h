#pragma once

#include "Platform/Clock.h"

namespace quillon::x11 {

class X11Clock final : public Clock {
public:
    [[nodiscard]] WallTime now() const override;
    [[nodiscard]] std::unique_ptr<DateFormatter> makeDateFormatter(const std::string& dateFormat) const override;
};

} // namespace quillon::x11
