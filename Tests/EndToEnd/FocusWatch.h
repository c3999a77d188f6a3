#pragma once

#include "XClient.h"

#include <mutex>
#include <thread>

namespace quillon::e2e {

/// Writes down, from its construction on, which windows become active or get the keyboard focus, and whose they are.
/// Works on a thread and a connection of its own, so that short changes are seen too.
class FocusWatch {
public:
    struct Change {
        Window window = 0;
        /// None when the window was gone before it could be asked.
        std::optional<pid_t> owner;
        /// Keyboard focus, as opposed to the window manager's active window.
        bool isKeyboardFocus = false;
    };

    explicit FocusWatch(const std::string& displayName);
    ~FocusWatch();
    FocusWatch(const FocusWatch&) = delete;
    FocusWatch& operator=(const FocusWatch&) = delete;

    [[nodiscard]] std::vector<Change> changes() const;

private:
    void watch();
    void watchWindow(Window window) const;
    void handle(const xcb_generic_event_t& event);
    void record(Window window, bool isKeyboardFocus);

    XClient client;
    int stopSignal;
    mutable std::mutex mutex;
    std::vector<Change> seen;
    std::thread thread;
};

} // namespace quillon::e2e
