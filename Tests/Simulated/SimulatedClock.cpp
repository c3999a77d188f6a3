#include "Simulated/SimulatedClock.h"

#include "Simulated/Misuse.h"

#include <array>
#include <cctype>
#include <vector>

namespace quillon::simulated {

namespace {

using namespace std::chrono;

constexpr auto start = sys_days{year{2026} / month{3} / day{1}} + 14h + 5min + 9s + 123ms;

struct Field {
    std::string_view pattern;
    long long value;
};

std::array<Field, 7> fieldsOf(WallTime time) {
    const auto midnight = floor<days>(time);
    const year_month_day date(midnight);
    const hh_mm_ss clock(floor<milliseconds>(time - midnight));
    return {{
        {"yyyy", static_cast<int>(date.year())},
        {"MM", static_cast<unsigned>(date.month())},
        {"dd", static_cast<unsigned>(date.day())},
        {"HH", clock.hours().count()},
        {"mm", clock.minutes().count()},
        {"ss", clock.seconds().count()},
        {"SSS", clock.subseconds().count()},
    }};
}

class Formatter final : public DateFormatter {
public:
    explicit Formatter(std::string dateFormat) : dateFormat(std::move(dateFormat)) {}

    [[nodiscard]] std::string string(WallTime time) const override {
        const auto fields = fieldsOf(time);
        std::string text;
        for (std::size_t offset = 0; offset < dateFormat.size();) {
            const auto rest = std::string_view(dateFormat).substr(offset);
            offset += appendField(fields, rest, text);
        }
        return text;
    }

private:
    /// Appends what the pattern starts with; how much of the pattern that was.
    static std::size_t appendField(const std::array<Field, 7>& fields, std::string_view pattern, std::string& text) {
        for (const auto& field : fields) {
            if (pattern.starts_with(field.pattern)) {
                text += fmt::format("{:0{}}", field.value, field.pattern.size());
                return field.pattern.size();
            }
        }
        if (std::isalpha(static_cast<unsigned char>(pattern.front())) != 0) {
            misuse(fmt::format("a date pattern with the unknown field \"{}\"", pattern));
        }
        text += pattern.front();
        return 1;
    }

    std::string dateFormat;
};

} // namespace

WallTime SimulatedClock::now() const {
    return start + scheduler.now() - setBackBy;
}

std::unique_ptr<DateFormatter> SimulatedClock::makeDateFormatter(const std::string& dateFormat) const {
    return std::make_unique<Formatter>(dateFormat);
}

} // namespace quillon::simulated
