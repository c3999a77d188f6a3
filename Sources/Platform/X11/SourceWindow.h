#pragma once

#include "Platform/Scheduler.h"
#include "Platform/X11/CapturedPicture.h"
#include "Platform/X11/ClientWindows.h"
#include "Platform/X11/Connection.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

namespace quillon::x11 {

/// Another application's window whose picture the server keeps complete, whatever covers it: it is redirected
/// (Composite, automatic) as long as this lives. Main thread.
class SourceWindow {
public:
    enum class State {
        unknown, ///< the server has not answered yet
        present, ///< mapped or not
        gone,
    };
    struct Handlers {
        std::function<void()> pictureReplaced;
        std::function<void()> gone;
    };

    /// `isWhole` says that the server has the picture of all of the window already.
    SourceWindow(Connection& connection, xcb_window_t window, bool isWhole);
    SourceWindow(const SourceWindow&) = delete;
    SourceWindow& operator=(const SourceWindow&) = delete;
    ~SourceWindow();

    [[nodiscard]] xcb_window_t id() const { return window; }
    [[nodiscard]] State state() const { return currentState; }
    [[nodiscard]] bool isMapped() const { return mapped; }
    /// The live picture; the last one while the window is not mapped; null when there was none yet.
    [[nodiscard]] const std::shared_ptr<CapturedPicture>& picture() const { return current; }
    /// When the application will have redrawn what the server did not keep.
    [[nodiscard]] std::chrono::steady_clock::time_point completeFrom() const { return complete; }
    /// Calls back once the state is known and, for a mapped window, its picture is there or cannot be had; at once
    /// when that is so already.
    void whenKnown(Task task);
    /// The handlers may destroy registrations, this one's included.
    [[nodiscard]] RegistrationToken observe(Handlers handlers);

private:
    void handle(const xcb_generic_event_t& event);
    void attributesArrived(const void* reply);
    void configured(int width, int height, int border);
    void namePicture();
    void pictureArrived(const void* pixmapGeometry);
    void becomeGone();
    void becomeKnown();
    void call(std::function<void()> Handlers::*handler);

    Connection& connection;
    const xcb_window_t window;
    const bool wasWhole;
    State currentState = State::unknown;
    bool settled = false;
    bool mapped = false;
    std::chrono::steady_clock::time_point complete;
    /// Width, height and border are those of the latest notice; depth and border count for the next naming.
    PictureGeometry geometry;
    std::shared_ptr<CapturedPicture> current;
    /// Named, but its size is not known yet.
    NamedPixmap pending;
    std::vector<Task> waiting;
    std::shared_ptr<std::map<int, Handlers>> observers = std::make_shared<std::map<int, Handlers>>();
    int nextObserver = 0;
    RegistrationToken events;
    RegistrationToken selection;
    RegistrationToken attributesReply;
    RegistrationToken geometryReply;
    RegistrationToken pictureReply;
};

/// The redirected windows, each held once however many records, filters and streams use it. Main thread.
class SourceWindows {
public:
    SourceWindows(Connection& connection, const ClientWindows& windows) : connection(connection), windows(windows) {}

    [[nodiscard]] std::shared_ptr<SourceWindow> hold(xcb_window_t window);

private:
    [[nodiscard]] bool isWhole(xcb_window_t window) const;

    Connection& connection;
    const ClientWindows& windows;
    std::unordered_map<xcb_window_t, std::weak_ptr<SourceWindow>> held;
};

} // namespace quillon::x11
