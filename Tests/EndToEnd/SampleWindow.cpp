// A program with windows whose picture is known: each shows a numbered content, and every number looks different
// everywhere. It is told what to show by client messages of type _SAMPLE_SHOW (data: the number) and _SAMPLE_PLAY
// (data: contents per second, 0 to stop; 1 to change only a region of 200x100). The number shown stands in the
// property _SAMPLE_CONTENT of the window, set after the drawing. The X key codes that the window was given presses of
// stand in its property _SAMPLE_KEYS, in their order.
//
// With --input it writes down what the first window, and a part of it with a window of its own, get of the pointer
// and the focus, one line an event: "window press 1 at 20,30 state 0x0".
//
// Arguments: --windows N  --place X,Y,WIDTH,HEIGHT  --title TEXT  --depth 32  --no-pid  --input FILE
//            --part X,Y,WIDTH,HEIGHT

#include "HandleEvents.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/timerfd.h>
#include <unistd.h>
#include <vector>

namespace {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeReply>;

struct Options {
    int windows = 1;
    int x = 100;
    int y = 100;
    int width = 640;
    int height = 480;
    std::string title = "Sample";
    bool translucent = false;
    bool tellsProcess = true;
    std::string inputFile;
    xcb_rectangle_t part{};
};

Options parse(int count, char** arguments) {
    Options options;
    for (int index = 1; index < count; ++index) {
        const std::string name = arguments[index];
        if (name == "--no-pid") {
            options.tellsProcess = false;
            continue;
        }
        const char* value = index + 1 < count ? arguments[++index] : "";
        if (name == "--windows") {
            options.windows = std::atoi(value);
        } else if (name == "--place") {
            if (std::sscanf(value, "%d,%d,%d,%d", &options.x, &options.y, &options.width, &options.height) != 4) {
                std::exit(2);
            }
        } else if (name == "--title") {
            options.title = value;
        } else if (name == "--input") {
            options.inputFile = value;
        } else if (name == "--part") {
            if (std::sscanf(value, "%hd,%hd,%hu,%hu", &options.part.x, &options.part.y, &options.part.width,
                            &options.part.height) != 4) {
                std::exit(2);
            }
        } else if (name == "--depth") {
            options.translucent = std::strcmp(value, "32") == 0;
        } else {
            std::exit(2);
        }
    }
    return options;
}

constexpr int cellSide = 20;
constexpr xcb_rectangle_t region{50, 50, 200, 100};

std::uint32_t scrambled(std::uint32_t value) {
    value ^= value >> 16;
    value *= 0x7feb352dU;
    value ^= value >> 15;
    value *= 0x846ca68bU;
    return value ^ (value >> 16);
}

class SampleWindow {
public:
    SampleWindow(xcb_connection_t* connection, const xcb_screen_t& screen, const Options& options, int index)
        : connection(connection), translucent(options.translucent), width(options.width), height(options.height) {
        window = xcb_generate_id(connection);
        std::uint8_t depth = XCB_COPY_FROM_PARENT;
        xcb_visualid_t visual = screen.root_visual;
        if (translucent) {
            depth = 32;
            visual = visualOfDepth32(screen);
        }
        const xcb_colormap_t colormap = xcb_generate_id(connection);
        xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colormap, screen.root, visual);
        const std::array<std::uint32_t, 4> values{
            0, 0, XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_KEY_PRESS, colormap};
        xcb_create_window(connection, depth, window, screen.root, static_cast<std::int16_t>(options.x + 40 * index),
                          static_cast<std::int16_t>(options.y + 40 * index), static_cast<std::uint16_t>(width),
                          static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, values.data());
        context = xcb_generate_id(connection);
        xcb_create_gc(connection, context, window, 0, nullptr);
    }

    void setProperties(const Options& options, int index) const {
        const auto title = options.windows == 1 ? options.title : options.title + " " + std::to_string(index + 1);
        setText("_NET_WM_NAME", "UTF8_STRING", title);
        setText("WM_NAME", "STRING", title);
        const std::string wmClass("sample-window\0Sample\0", 21);
        setText("WM_CLASS", "STRING", wmClass);
        if (options.tellsProcess) {
            setNumber("_NET_WM_PID", "CARDINAL", static_cast<std::uint32_t>(getpid()));
        }
        setNumber("WM_PROTOCOLS", "ATOM", atom("WM_DELETE_WINDOW"));
        // The user's own place and size (flags USPosition and USSize), which window managers keep.
        const std::array<std::uint32_t, 18> hints{3};
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS,
                            32, hints.size(), hints.data());
        xcb_map_window(connection, window);
    }

    [[nodiscard]] xcb_window_t id() const { return window; }
    [[nodiscard]] xcb_atom_t atom(std::string_view name) const {
        const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
        return reply->atom;
    }

    void show(std::uint32_t number, bool onlyRegion) {
        (onlyRegion ? regionContent : content) = number;
        if (!onlyRegion) {
            regionContent = 0;
            draw({0, 0, static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)}, number);
        } else {
            draw(region, number);
        }
        setNumber("_SAMPLE_CONTENT", "CARDINAL", number);
        xcb_flush(connection);
    }
    void showNext(bool onlyRegion) { show((onlyRegion ? regionContent : content) + 1, onlyRegion); }

    void keyPressed(std::uint32_t key) const {
        xcb_change_property(connection, XCB_PROP_MODE_APPEND, window, atom("_SAMPLE_KEYS"), XCB_ATOM_CARDINAL, 32, 1,
                            &key);
    }
    void resized(int newWidth, int newHeight) {
        width = newWidth;
        height = newHeight;
    }
    void redraw() {
        draw({0, 0, static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)}, content);
        if (regionContent != 0) {
            draw(region, regionContent);
        }
        setNumber("_SAMPLE_CONTENT", "CARDINAL", regionContent != 0 ? regionContent : content);
        xcb_flush(connection);
    }

private:
    static xcb_visualid_t visualOfDepth32(const xcb_screen_t& screen) {
        for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0; xcb_depth_next(&depth)) {
            if (depth.data->depth == 32) {
                return xcb_depth_visuals(depth.data)->visual_id;
            }
        }
        std::exit(3);
    }

    void setText(std::string_view name, std::string_view type, const std::string& text) const {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom(name), atom(type), 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
    }
    void setNumber(std::string_view name, std::string_view type, std::uint32_t number) const {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom(name), atom(type), 32, 1, &number);
    }

    /// Coloured cells with lines of one pixel between them, from a small set of colours that the number picks.
    void draw(const xcb_rectangle_t& area, std::uint32_t number) const {
        constexpr std::uint32_t colours = 8;
        std::array<std::vector<xcb_rectangle_t>, colours> cells;
        std::vector<xcb_rectangle_t> lines;
        for (int y = 0; y < area.height; y += cellSide) {
            for (int x = 0; x < area.width; x += cellSide) {
                const auto hash = scrambled(static_cast<std::uint32_t>(y * 4099 + x) + number * 0x9e3779b9U);
                cells[hash % colours].push_back(clipped(area, x, y, cellSide, cellSide));
            }
            lines.push_back(clipped(area, 0, y, area.width, 1));
        }
        for (int x = 0; x < area.width; x += cellSide) {
            lines.push_back(clipped(area, x, 0, 1, area.height));
        }
        for (std::uint32_t colour = 0; colour < colours; ++colour) {
            fill(cells[colour], scrambled(number * colours + colour + 1));
        }
        fill(lines, 0xffffff);
    }

    static xcb_rectangle_t clipped(const xcb_rectangle_t& area, int x, int y, int width, int height) {
        return {static_cast<std::int16_t>(area.x + x), static_cast<std::int16_t>(area.y + y),
                static_cast<std::uint16_t>(std::min(width, area.width - x)),
                static_cast<std::uint16_t>(std::min(height, area.height - y))};
    }

    void fill(const std::vector<xcb_rectangle_t>& rectangles, std::uint32_t colour) const {
        // Half of the translucent colours are opaque, the others let the half through (premultiplied).
        std::uint32_t pixel = colour & 0xffffff;
        if (translucent) {
            pixel = (colour & 0x1000000) != 0 ? pixel | 0xff000000 : ((pixel >> 1) & 0x7f7f7f) | 0x80000000;
        }
        xcb_change_gc(connection, context, XCB_GC_FOREGROUND, &pixel);
        xcb_poly_fill_rectangle(connection, window, context, static_cast<std::uint32_t>(rectangles.size()),
                                rectangles.data());
    }

    xcb_connection_t* connection;
    bool translucent;
    int width;
    int height;
    xcb_window_t window = 0;
    xcb_gcontext_t context = 0;
    std::uint32_t content = 1;
    std::uint32_t regionContent = 0;
};

constexpr std::uint32_t pointerEvents = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                                        XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
                                        XCB_EVENT_MASK_LEAVE_WINDOW;

/// Writes down what the pointer and the focus do.
class InputLog {
public:
    InputLog(xcb_connection_t* connection, xcb_window_t window, const Options& options)
        : window(window), file(std::fopen(options.inputFile.c_str(), "w")) {
        if (options.part.width > 0) {
            part = xcb_generate_id(connection);
            xcb_create_window(connection, XCB_COPY_FROM_PARENT, part, window, options.part.x, options.part.y,
                              options.part.width, options.part.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                              XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &pointerEvents);
            xcb_map_window(connection, part);
        }
    }

    void write(const xcb_generic_event_t& event) const {
        switch (event.response_type & 0x7f) {
        case XCB_BUTTON_PRESS:
            writeButton("press", event);
            break;
        case XCB_BUTTON_RELEASE:
            writeButton("release", event);
            break;
        case XCB_MOTION_NOTIFY:
            writePointer("move", event);
            break;
        case XCB_ENTER_NOTIFY:
            writePointer("enter", event);
            break;
        case XCB_LEAVE_NOTIFY:
            writePointer("leave", event);
            break;
        case XCB_FOCUS_IN:
            writeFocus("focus in", event);
            break;
        case XCB_FOCUS_OUT:
            writeFocus("focus out", event);
            break;
        default:
            break;
        }
    }

private:
    void writeButton(const std::string& name, const xcb_generic_event_t& event) const {
        writePointer(name + " " + std::to_string(event.pad0), event);
    }
    /// All of them begin alike.
    void writePointer(const std::string& name, const xcb_generic_event_t& event) const {
        const auto& pointer = reinterpret_cast<const xcb_button_press_event_t&>(event);
        writeLine(pointer.event, name + " at " + std::to_string(pointer.event_x) + "," +
                                     std::to_string(pointer.event_y) + stateText(pointer.state));
    }
    void writeFocus(const std::string& name, const xcb_generic_event_t& event) const {
        writeLine(reinterpret_cast<const xcb_focus_in_event_t&>(event).event, name);
    }
    static std::string stateText(std::uint16_t state) {
        std::array<char, 16> text{};
        std::snprintf(text.data(), text.size(), " state 0x%x", state);
        return text.data();
    }
    void writeLine(xcb_window_t receiver, const std::string& text) const {
        if (receiver != window && receiver != part) {
            return;
        }
        std::fprintf(file, "%s %s\n", receiver == window ? "window" : "part", text.c_str());
        std::fflush(file);
    }

    xcb_window_t window;
    xcb_window_t part = XCB_NONE;
    std::FILE* file;
};

class SampleProgram {
public:
    SampleProgram(xcb_connection_t* connection, const Options& options)
        : connection(connection), clock(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)) {
        const auto& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        windows.reserve(static_cast<std::size_t>(options.windows));
        for (int index = 0; index < options.windows; ++index) {
            windows.emplace_back(connection, screen, options, index);
            windows.back().setProperties(options, index);
        }
        if (!options.inputFile.empty()) {
            inputLog.emplace(connection, windows.front().id(), options);
        }
        showAtom = windows.front().atom("_SAMPLE_SHOW");
        playAtom = windows.front().atom("_SAMPLE_PLAY");
        protocolsAtom = windows.front().atom("WM_PROTOCOLS");
        deleteAtom = windows.front().atom("WM_DELETE_WINDOW");
    }

    void run() {
        while (!windows.empty() && xcb_connection_has_error(connection) == 0) {
            quillon::e2e::handleEvents(connection, [this](const auto& event) { handle(event); });
            std::array<pollfd, 2> sources{{{xcb_get_file_descriptor(connection), POLLIN, 0}, {clock, POLLIN, 0}}};
            poll(sources.data(), sources.size(), -1);
            std::uint64_t expirations = 0;
            if (read(clock, &expirations, sizeof expirations) > 0 && playing < windows.size()) {
                windows[playing].showNext(onlyRegion);
            }
        }
    }

private:
    void handle(const xcb_generic_event_t& event) {
        if (inputLog) {
            inputLog->write(event);
        }
        switch (event.response_type & 0x7f) {
        case XCB_EXPOSE:
            if (auto* window = find(reinterpret_cast<const xcb_expose_event_t&>(event).window)) {
                window->redraw();
            }
            break;
        case XCB_CONFIGURE_NOTIFY: {
            const auto& configured = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
            if (auto* window = find(configured.window)) {
                window->resized(configured.width, configured.height);
            }
            break;
        }
        case XCB_KEY_PRESS: {
            const auto& press = reinterpret_cast<const xcb_key_press_event_t&>(event);
            if (const auto* window = find(press.event)) {
                window->keyPressed(press.detail);
            }
            break;
        }
        case XCB_CLIENT_MESSAGE:
            obey(reinterpret_cast<const xcb_client_message_event_t&>(event));
            break;
        default:
            break;
        }
    }

    void obey(const xcb_client_message_event_t& message) {
        auto* window = find(message.window);
        if (window == nullptr) {
            return;
        }
        const auto* data = message.data.data32;
        if (message.type == showAtom) {
            window->show(data[0], false);
        } else if (message.type == playAtom) {
            playing = static_cast<std::size_t>(window - windows.data());
            onlyRegion = data[1] != 0;
            setRate(data[0]);
        } else if (message.type == protocolsAtom && data[0] == deleteAtom) {
            xcb_destroy_window(connection, window->id());
            windows.erase(windows.begin() + (window - windows.data()));
        }
    }

    void setRate(std::uint32_t contentsPerSecond) const {
        itimerspec setting{};
        if (contentsPerSecond > 0) {
            const long interval = 1000000000L / static_cast<long>(contentsPerSecond);
            setting.it_interval = {interval / 1000000000L, interval % 1000000000L};
            setting.it_value = setting.it_interval;
        }
        timerfd_settime(clock, 0, &setting, nullptr);
    }

    SampleWindow* find(xcb_window_t id) {
        for (auto& window : windows) {
            if (window.id() == id) {
                return &window;
            }
        }
        return nullptr;
    }

    xcb_connection_t* connection;
    int clock;
    std::vector<SampleWindow> windows;
    std::optional<InputLog> inputLog;
    std::size_t playing = 0;
    bool onlyRegion = false;
    xcb_atom_t showAtom = 0;
    xcb_atom_t playAtom = 0;
    xcb_atom_t protocolsAtom = 0;
    xcb_atom_t deleteAtom = 0;
};

} // namespace

int main(int count, char** arguments) {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) {
        return 1;
    }
    SampleProgram(connection, parse(count, arguments)).run();
    xcb_disconnect(connection);
    return 0;
}
