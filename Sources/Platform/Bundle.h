#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// What is installed with the program (NSBundle.mainBundle). Main thread; the answers do not change while the
/// process runs.
class Bundle {
public:
    virtual ~Bundle() = default;

    /// An entry of the bundle's information list, "CFBundleName" for instance; none when it is absent or no text.
    [[nodiscard]] virtual std::optional<std::string> textForInfoDictionaryKey(std::string_view key) const = 0;
    /// The text that the table has for the key in the user's language; none when it has no entry.
    [[nodiscard]] virtual std::optional<std::string> localizedString(std::string_view key,
                                                                     std::string_view table) const = 0;
};

} // namespace quillon
