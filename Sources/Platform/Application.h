#pragma once

#include "Platform/Menu.h"

#include <memory>
#include <string>
#include <vector>

namespace quillon {

/// What a script asks of the running program: a verb and its arguments, as typed.
struct ScriptCommand {
    std::string verb;
    std::vector<std::string> arguments;
};

/// The answer to a `ScriptCommand`: a process exit status and the text to show (on the standard output
/// when the status is 0, else on the standard error), without a final line feed; may be empty.
struct ScriptReply {
    int exitStatus = 0;
    std::string text;
};

/// What the application object tells its delegate (NSApplicationDelegate). Main thread.
class ApplicationDelegate {
public:
    virtual ~ApplicationDelegate() = default;

    virtual void applicationDidFinishLaunching() = 0;
    virtual void applicationWillTerminate() = 0;
    /// The user opened the running application again. The result says whether the platform should go on
    /// with what it does by itself on a reopen.
    virtual bool applicationShouldHandleReopen(bool hasVisibleWindows) = 0;
    /// A request from a script; only platforms with a scripting channel send it.
    virtual ScriptReply performScriptCommand(const ScriptCommand& command) = 0;
};

enum class ActivationPolicy {
    regular,
    /// No Dock icon, no menu bar of its own while inactive (NSApplicationActivationPolicyAccessory).
    accessory,
};

/// The application object and its event loop (NSApplication). Main thread.
class Application {
public:
    virtual ~Application() = default;

    /// Held weakly: the caller keeps the delegate alive.
    virtual void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) = 0;
    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    /// The menu whose key equivalents work while one of the program's own windows has the keyboard focus: an item for
    /// each submenu. Shown only where an active program has a menu bar.
    virtual void setMainMenu(std::shared_ptr<Menu> menu) = 0;
    /// Calls `applicationDidFinishLaunching`, then serves events until termination was asked for, calls
    /// `applicationWillTerminate` and returns (or ends the process, where the platform does so).
    virtual void run() = 0;
    /// Makes the program the active one, whatever the user is working in (activateIgnoringOtherApps:).
    virtual void activateIgnoringOtherApps() = 0;
    /// Asks the event loop to end; returns at once on platforms whose loop ends later.
    virtual void terminate() = 0;
};

} // namespace quillon
