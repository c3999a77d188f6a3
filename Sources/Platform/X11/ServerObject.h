#pragma once

#include "Platform/X11/Connection.h"

#include <xcb/damage.h>
#include <xcb/render.h>
#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <cstdint>
#include <utility>

namespace quillon::x11 {

/// Whether the server may have dropped an object by itself before its owner frees it.
enum class Freeing { mustSucceed, mayFail };

/// Owns one object at the X server, or none. The connection must outlive it.
template <auto freeRequest, Freeing freeing = Freeing::mustSucceed>
class ServerObject {
public:
    ServerObject() = default;
    /// A fresh number, for the request that makes the object.
    explicit ServerObject(Connection& connection)
        : connection(&connection), number(xcb_generate_id(connection.xcb())) {}
    ServerObject(ServerObject&& other) noexcept
        : connection(other.connection), number(std::exchange(other.number, 0)) {}
    ServerObject& operator=(ServerObject&& other) noexcept {
        if (this != &other) {
            reset();
            connection = other.connection;
            number = std::exchange(other.number, 0);
        }
        return *this;
    }
    ~ServerObject() { reset(); }

    [[nodiscard]] std::uint32_t id() const { return number; }
    explicit operator bool() const { return number != 0; }

    void reset() {
        if (number == 0) {
            return;
        }
        const auto cookie = freeRequest(connection->xcb(), std::exchange(number, 0));
        if constexpr (freeing == Freeing::mayFail) {
            connection->mayFail(cookie);
        }
    }

private:
    Connection* connection = nullptr;
    std::uint32_t number = 0;
};

using Pixmap = ServerObject<xcb_free_pixmap>;
/// The picture that the server keeps of a redirected window; naming it may have failed.
using NamedPixmap = ServerObject<xcb_free_pixmap, Freeing::mayFail>;
using GraphicsContext = ServerObject<xcb_free_gc>;
using Colormap = ServerObject<xcb_free_colormap>;
using Picture = ServerObject<xcb_render_free_picture>;
using Region = ServerObject<xcb_xfixes_destroy_region>;
/// Ends with its window.
using Damage = ServerObject<xcb_damage_destroy, Freeing::mayFail>;

} // namespace quillon::x11
