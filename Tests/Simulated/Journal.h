#pragma once

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

namespace quillon::simulated {

/// Every call that changes something on the desktop, across all ports, in the order in which they were made:
/// "panel.setLevel 3". Plain reads are not recorded.
class Journal {
public:
    template <class... Arguments>
    void record(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
        entries.push_back(fmt::format(format, std::forward<Arguments>(arguments)...));
    }

    void clear() { entries.clear(); }

    /// What was recorded since the last `take` or `clear`.
    [[nodiscard]] std::vector<std::string> take() { return std::exchange(entries, {}); }

    /// The same, only the entries that start with one of the prefixes.
    [[nodiscard]] std::vector<std::string> take(const std::vector<std::string>& prefixes) {
        auto taken = take();
        std::erase_if(taken, [&](const std::string& entry) {
            for (const auto& prefix : prefixes) {
                if (entry.starts_with(prefix)) {
                    return false;
                }
            }
            return true;
        });
        return taken;
    }

private:
    std::vector<std::string> entries;
};

} // namespace quillon::simulated
