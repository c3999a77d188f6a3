#pragma once

#include "Simulated/Desktop.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace quillon {

inline const std::string logPath = "/Users/anna/Library/Logs/Quillon/quillon.log";

/// Base of the core's tests: a desktop of its own for each, installed as the platform.
class UnitTest : public testing::Test {
protected:
    using Lines = std::vector<std::string>;

    void turnLoggingOn() { desktop.userDefaults().store("debugLogging", true); }

    /// The messages that were logged since the last call, without their times.
    Lines takeLog() {
        desktop.runUntilIdle();
        const auto content = desktop.fileSystem().content(logPath).value_or("");
        const std::size_t timeLength = std::string_view("2026-03-01 14:05:09.123  ").size();
        Lines lines;
        while (logOffset < content.size()) {
            const auto end = content.find('\n', logOffset);
            const auto start = logOffset + timeLength;
            lines.push_back(content.substr(start, end - start));
            logOffset = end + 1;
        }
        return lines;
    }

    simulated::Desktop desktop;
    PlatformScope scope{desktop};

private:
    std::size_t logOffset = 0;
};

} // namespace quillon
