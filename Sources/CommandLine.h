#pragma once

#include "InputRouting.h"
#include "Platform/Application.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The command line of platforms that have one. Pure functions; texts are Italian, as everything that users
/// see. The exit statuses are those of `ExitStatus`.
namespace quillon::CommandLine {

/// Start the application, or reopen the one that runs.
struct Run {
    /// For a start.
    InputRouting inputRouting = InputRouting::forward;
};
struct ShowHelp {};
struct ShowVersion {};
struct ListWindows {};
/// For the running application.
struct Script {
    ScriptCommand command;
};
struct ReadDefault {
    std::string key;
};
struct WriteDefault {
    std::string key;
    /// As typed; `parsePropertyText` gives it a type.
    std::string value;
};
struct DeleteDefault {
    std::string key;
};
/// The command line is wrong: one line that says what to do.
struct UsageError {
    std::string text;
};

using Request =
    std::variant<Run, ShowHelp, ShowVersion, ListWindows, Script, ReadDefault, WriteDefault, DeleteDefault, UsageError>;

/// `arguments` without the program's name.
[[nodiscard]] Request parse(const std::vector<std::string>& arguments);

[[nodiscard]] std::string_view helpText();

} // namespace quillon::CommandLine
