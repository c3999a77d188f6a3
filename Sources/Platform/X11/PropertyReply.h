#pragma once

#include "Platform/X11/Connection.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>

namespace quillon::x11 {

/// The numbers of a property of 32 bits; empty when there is no reply, or one of another format. Valid as long as it.
[[nodiscard]] inline std::span<const std::uint32_t> numbersOf(const xcb_get_property_reply_t* reply) {
    if (reply == nullptr || reply->format != 32) {
        return {};
    }
    return {static_cast<const std::uint32_t*>(xcb_get_property_value(reply)), reply->value_len};
}

/// A property that was asked for; `wait` must follow, so that several can be asked for before the first is waited for.
class PropertyReply {
public:
    /// `longestInUnits` bounds the answer, in units of 4 bytes.
    PropertyReply(Connection& connection, xcb_window_t window, xcb_atom_t property, std::uint32_t longestInUnits)
        : connection(&connection), cookie(xcb_get_property(connection.xcb(), 0, window, property,
                                                           XCB_GET_PROPERTY_TYPE_ANY, 0, longestInUnits)) {}

    /// Waits for the reply; the accessors below have nothing to tell before. A window that has closed has no
    /// properties.
    void wait() { reply.reset(xcb_get_property_reply(connection->xcb(), cookie, nullptr)); }

    [[nodiscard]] xcb_atom_t type() const { return reply ? reply->type : xcb_atom_t{XCB_ATOM_NONE}; }
    /// The bytes of a property of 8 bits; none when it is absent or has another format.
    [[nodiscard]] std::optional<std::string_view> bytes() const {
        if (!reply || reply->format != 8) {
            return std::nullopt;
        }
        return std::string_view(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    }
    /// The numbers of a property of 32 bits; empty when it is absent or has another format. Valid as long as this
    /// object.
    [[nodiscard]] std::span<const std::uint32_t> numbers() const { return numbersOf(reply.get()); }
    [[nodiscard]] bool contains(std::uint32_t number) const {
        const auto all = numbers();
        return std::find(all.begin(), all.end(), number) != all.end();
    }
    [[nodiscard]] std::optional<std::uint32_t> number() const {
        const auto all = numbers();
        return all.empty() ? std::nullopt : std::optional(all.front());
    }

private:
    Connection* connection;
    xcb_get_property_cookie_t cookie;
    Reply<xcb_get_property_reply_t> reply;
};

} // namespace quillon::x11
