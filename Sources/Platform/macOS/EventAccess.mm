#include "Platform/EventAccess.h"

#include "Platform/macOS/Ports.h"

#include <CoreGraphics/CoreGraphics.h>

namespace quillon::macos {

namespace {

class MacEventAccess final : public EventAccess {
public:
    bool preflightPostEventAccess() const override { return CGPreflightPostEventAccess(); }
    bool requestPostEventAccess() override { return CGRequestPostEventAccess(); }
    bool preflightListenEventAccess() const override { return CGPreflightListenEventAccess(); }
};

} // namespace

std::unique_ptr<EventAccess> makeEventAccess() {
    return std::make_unique<MacEventAccess>();
}

} // namespace quillon::macos
