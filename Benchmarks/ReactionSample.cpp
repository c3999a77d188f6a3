// A program with a window that draws a pixel, of another colour each time, when a button is pressed in it. Arguments: X
// Y.

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>

int main(int count, char** arguments) {
    if (count != 3) {
        return 2;
    }
    auto* const connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) {
        return 1;
    }
    const auto& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const auto window = xcb_generate_id(connection);
    const std::array<std::uint32_t, 2> values{screen.white_pixel, XCB_EVENT_MASK_BUTTON_PRESS};
    constexpr std::uint16_t width = 500;
    constexpr std::uint16_t height = 400;
    xcb_create_window(
        connection, XCB_COPY_FROM_PARENT, window, screen.root, static_cast<std::int16_t>(std::atoi(arguments[1])),
        static_cast<std::int16_t>(std::atoi(arguments[2])), width, height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
        screen.root_visual, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values.data());
    // The user's own place and size (flags USPosition and USSize), which window managers keep.
    const std::array<std::uint32_t, 18> hints{3};
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32,
                        hints.size(), hints.data());
    const auto context = xcb_generate_id(connection);
    xcb_create_gc(connection, context, window, 0, nullptr);
    xcb_map_window(connection, window);
    xcb_flush(connection);
    std::uint32_t color = 0;
    while (auto* const event = xcb_wait_for_event(connection)) {
        if ((event->response_type & 0x7f) == XCB_BUTTON_PRESS) {
            color += 0x102030;
            xcb_change_gc(connection, context, XCB_GC_FOREGROUND, &color);
            const xcb_point_t point{20, 20};
            xcb_poly_point(connection, XCB_COORD_MODE_ORIGIN, window, context, 1, &point);
            xcb_flush(connection);
        }
        std::free(event);
    }
    xcb_disconnect(connection);
    return 0;
}
