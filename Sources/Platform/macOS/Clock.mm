#include "Platform/Clock.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Ports.h"

#import <Foundation/Foundation.h>

namespace quillon::macos {

namespace {

/// NSDate counts in a double, so that a whole millisecond may become a little less and be shown as the one
/// before; this much more, in milliseconds, does not reach the next.
constexpr double roundingGuard = 0.1;

NSDate* toNSDate(WallTime time) {
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(time.time_since_epoch());
    return [NSDate dateWithTimeIntervalSince1970:(static_cast<double>(milliseconds.count()) + roundingGuard) / 1000];
}

/// NSDateFormatter may be used on any thread as long as its properties are left alone.
class MacDateFormatter final : public DateFormatter {
public:
    explicit MacDateFormatter(const std::string& dateFormat) { formatter.dateFormat = toNSString(dateFormat); }

    std::string string(WallTime time) const override { return toString([formatter stringFromDate:toNSDate(time)]); }

private:
    NSDateFormatter* formatter = [[NSDateFormatter alloc] init];
};

class MacClock final : public Clock {
public:
    WallTime now() const override { return std::chrono::system_clock::now(); }

    std::unique_ptr<DateFormatter> makeDateFormatter(const std::string& dateFormat) const override {
        return std::make_unique<MacDateFormatter>(dateFormat);
    }
};

} // namespace

std::unique_ptr<Clock> makeClock() {
    return std::make_unique<MacClock>();
}

} // namespace quillon::macos
