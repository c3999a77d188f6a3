#include "Platform/X11/WindowAccess.h"

namespace quillon::x11 {

WindowAccess::~WindowAccess() = default;

bool WindowAccess::openSideConnection() const {
    if (sideConnection && sideConnection->isAlive()) {
        return true;
    }
    auto opened = Connection::open();
    auto* const connection = std::get_if<std::unique_ptr<Connection>>(&opened);
    sideConnection = connection != nullptr ? std::move(*connection) : nullptr;
    return sideConnection != nullptr;
}

} // namespace quillon::x11
