#pragma once

#include "Picture.h"
#include "Program.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace quillon::e2e {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeReply>;

using Window = xcb_window_t;

/// What one X client holds at the server.
struct ServerResources {
    /// Number of resources by type.
    std::map<std::string, unsigned> counts;
    std::uint64_t pixmapBytes = 0;

    bool operator==(const ServerResources&) const = default;
};

/// The test's own eyes and hands on the desktop: it looks at windows as any X client can, asks the window manager
/// for what a user would do, and makes real input. Every question is answered by the server at the time of the call.
class XClient {
public:
    explicit XClient(const std::string& displayName);
    ~XClient();
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;

    [[nodiscard]] xcb_connection_t* xcb() const { return connection; }
    [[nodiscard]] Window root() const { return screen->root; }
    [[nodiscard]] xcb_atom_t atom(std::string_view name) const;
    /// Waits until the condition holds; looks again at every event and at least 50 times a second.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& condition, Milliseconds bound = stepBound) const;
    /// True when the condition holds at every look during the time.
    [[nodiscard]] bool holdsFor(const std::function<bool()>& condition, Milliseconds time) const;

    // The desktop
    /// Tries it out with a window. A window manager that is still starting may overlook one.
    [[nodiscard]] bool managesNewWindows() const;
    [[nodiscard]] bool hasCompositor() const;
    void setResourceManager(const std::string& text) const;
    [[nodiscard]] Window activeWindow() const;
    [[nodiscard]] std::uint32_t currentDesktop() const;
    void switchToDesktop(std::uint32_t desktop) const;

    // Windows
    /// The managed windows, in the order in which they were first mapped.
    [[nodiscard]] std::vector<Window> managedWindows() const;
    /// The managed windows of a process, ordered by number.
    [[nodiscard]] std::vector<Window> managedWindowsOf(pid_t process) const;
    /// The windows of a process that are mapped and can show something, managed or not, outermost only, bottom to
    /// top.
    [[nodiscard]] std::vector<Window> visibleWindowsOf(pid_t process) const;
    /// The outermost window of that name (WM_NAME) that can be seen, wherever it is; none when there is none.
    [[nodiscard]] std::optional<Window> visibleWindowNamed(const std::string& name) const;
    /// The local process that made the window, as the server knows it.
    [[nodiscard]] std::optional<pid_t> ownerOf(Window window) const;
    /// Where it is on the root window, without borders and decorations; none when it is gone.
    [[nodiscard]] std::optional<Rect> place(Window window) const;
    [[nodiscard]] bool isViewable(Window window) const;
    /// Whether the first window, or its frame, lies above the second or its frame. False when one of them is gone.
    [[nodiscard]] bool isAbove(Window window, Window other) const;
    [[nodiscard]] std::vector<std::uint32_t> property(Window window, std::string_view name) const;

    /// Until it has handled whatever has happened so far, and has let go of a press that it held back. Presses that
    /// come sooner may be lost: of thirty clicks at once on a window without the focus, several now and then never get
    /// there, with openbox and with xfwm4.
    void waitForWindowManager() const;

    // What a user asks of the window manager
    void activate(Window window) const;
    void moveResize(Window window, const Rect& place) const;
    void minimise(Window window) const;
    void closeWindow(Window window) const;
    void setFullScreen(Window window, bool on = true) const;
    /// Any bytes, as a badly written program might set them.
    void setTitle(Window window, const std::string& bytes) const;
    void sendMessage(Window window, std::string_view type, const std::vector<std::uint32_t>& data) const;

    // Pictures
    /// What a user sees there.
    [[nodiscard]] Picture screenPicture(const Rect& place) const;
    [[nodiscard]] Picture wholeScreen() const;
    /// The window's own picture, also where it is covered; none when it is not kept off the screen.
    [[nodiscard]] std::optional<Picture> windowPicture(Window window) const;

    // Real input
    void movePointer(int x, int y) const;
    /// Where the user's pointer is.
    struct Place {
        int x = 0;
        int y = 0;
        bool operator==(const Place&) const = default;
    };
    [[nodiscard]] Place pointer() const;
    void pressButton(std::uint8_t button) const;
    void releaseButton(std::uint8_t button) const;
    void pressKey(std::uint8_t key) const;
    void releaseKey(std::uint8_t key) const;
    /// Held keys repeat from now on; a desktop starts without that.
    void turnAutoRepeatOn() const;
    /// Presses the keys in turn and releases them in the opposite order.
    void type(const std::vector<std::uint8_t>& keys) const;

    // Synthetic input, which a window's program takes though the window is covered and not active
    void postClick(Window window, int x, int y) const;
    void postKey(Window window, std::uint8_t keyCode) const;

    /// The text that is selected in some window (the PRIMARY selection), as a user would paste it; none when there is
    /// no selection or its owner does not answer.
    [[nodiscard]] std::optional<std::string> selectedText() const;

    // The keyboard as other programs use it
    /// Claims a key with exactly these modifier bits for this client; false when another one has it.
    [[nodiscard]] bool grabKey(std::uint8_t key, std::uint16_t modifiers) const;
    void ungrabKey(std::uint8_t key, std::uint16_t modifiers) const;

    /// Of all X clients of the process together.
    [[nodiscard]] ServerResources resourcesOf(pid_t process) const;

private:
    [[nodiscard]] std::map<std::uint32_t, pid_t> processesOfClients() const;
    [[nodiscard]] std::uint32_t clientBase(std::uint32_t resource) const;
    [[nodiscard]] std::vector<Window> children(Window window) const;
    [[nodiscard]] std::string nameOf(Window window) const;
    [[nodiscard]] std::optional<Window> visibleDescendantNamed(Window window, const std::string& name) const;
    [[nodiscard]] std::optional<std::size_t> stackingPosition(Window window) const;
    void sendMessageTo(Window destination, std::uint32_t mask, Window window, std::string_view type,
                       const std::vector<std::uint32_t>& data) const;
    void askWindowManager(Window window, std::string_view type, const std::vector<std::uint32_t>& data) const;
    void postInput(std::uint8_t type, std::uint8_t detail, Window window, int x, int y, std::uint16_t state) const;
    void fakeInputWithoutFlush(std::uint8_t type, std::uint8_t detail, int x, int y) const;
    void fakeInput(std::uint8_t type, std::uint8_t detail, int x, int y) const;
    [[nodiscard]] Picture image(xcb_drawable_t drawable, const Rect& part) const;
    void dropEvents() const;

    [[nodiscard]] bool hasExtension(xcb_extension_t& extension) const;

    xcb_connection_t* connection = nullptr;
    const xcb_screen_t* screen = nullptr;
    mutable std::map<std::string, xcb_atom_t, std::less<>> atoms;
};

} // namespace quillon::e2e
