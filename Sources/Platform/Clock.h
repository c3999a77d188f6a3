#pragma once

#include <chrono>
#include <memory>
#include <string>

namespace quillon {

/// A moment of wall-clock time.
using WallTime = std::chrono::system_clock::time_point;

/// Turns moments into text (DateFormatter): current locale, current time zone. Any thread.
class DateFormatter {
public:
    virtual ~DateFormatter() = default;

    [[nodiscard]] virtual std::string string(WallTime time) const = 0;
};

/// The wall clock. Any thread.
class Clock {
public:
    virtual ~Clock() = default;

    [[nodiscard]] virtual WallTime now() const = 0;
    /// `dateFormat` is a Unicode date pattern (Unicode Technical Standard 35) made of the fields yyyy,
    /// MM, dd, HH, mm, ss, SSS and punctuation.
    [[nodiscard]] virtual std::unique_ptr<DateFormatter> makeDateFormatter(const std::string& dateFormat) const = 0;
};

} // namespace quillon
