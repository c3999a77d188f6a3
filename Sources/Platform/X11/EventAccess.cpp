#include "Platform/X11/EventAccess.h"

#include "Platform/X11/Connection.h"

namespace quillon::x11 {

bool X11EventAccess::preflightPostEventAccess() const {
    if (!hasTestExtension) {
        constexpr std::string_view extension = "XTEST";
        const auto cookie = xcb_query_extension(connection.xcb(), extension.size(), extension.data());
        const Reply<xcb_query_extension_reply_t> reply(xcb_query_extension_reply(connection.xcb(), cookie, nullptr));
        hasTestExtension = reply && reply->present != 0;
    }
    return *hasTestExtension;
}

bool X11EventAccess::preflightListenEventAccess() const {
    return true;
}

} // namespace quillon::x11
