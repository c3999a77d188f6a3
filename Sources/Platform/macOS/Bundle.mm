#include "Platform/Bundle.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Ports.h"

#import <Foundation/Foundation.h>

namespace quillon::macos {

namespace {

/// What a table is asked to answer for a key that it does not have; no table has it as a text.
NSString* const noEntry = @"\x01";

class MacBundle final : public Bundle {
public:
    std::optional<std::string> textForInfoDictionaryKey(std::string_view key) const override {
        return toText([NSBundle.mainBundle objectForInfoDictionaryKey:toNSString(key)]);
    }

    std::optional<std::string> localizedString(std::string_view key, std::string_view table) const override {
        NSString* const text = [NSBundle.mainBundle localizedStringForKey:toNSString(key)
                                                                    value:noEntry
                                                                    table:toNSString(table)];
        return [text isEqualToString:noEntry] ? std::nullopt : toOptionalString(text);
    }
};

} // namespace

std::unique_ptr<Bundle> makeBundle() {
    return std::make_unique<MacBundle>();
}

} // namespace quillon::macos
