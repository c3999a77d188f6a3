#pragma once

#include <concepts>
#include <string>

/// The program's only diagnostic output: lines appended to Logs/Quillon/quillon.log in the user's Library
/// folder while the user default "debugLogging" is true. Nothing here reports an error or makes a caller
/// wait. Any thread.
namespace quillon {

/// The user default, read anew on every call.
[[nodiscard]] bool isDebugLoggingOn();

/// The time now, as lines begin with it.
[[nodiscard]] std::string logTimestamp();

/// Appends a line on the log's own queue.
void appendToLog(const std::string& timestamp, const std::string& message);

/// Logs the text that `message` returns. It is called only while logging is on.
template <std::invocable Message>
void wplog(Message&& message) {
    if (isDebugLoggingOn()) {
        const auto timestamp = logTimestamp();
        appendToLog(timestamp, message());
    }
}

} // namespace quillon
