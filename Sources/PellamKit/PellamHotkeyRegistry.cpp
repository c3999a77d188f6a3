#include "PellamKit/PellamHotkeyRegistry.h"

#include "Platform/Platform.h"
#include "Platform/UserDefaults.h"

#include <algorithm>

namespace quillon::PellamHotkeyRegistry {

void publish(const std::vector<PellamHotkey>& hotkeys) {
    const auto json = encodeHotkeys(hotkeys);
    if (!json) {
        return;
    }
    PropertyData data(json->size());
    std::transform(json->begin(), json->end(), data.begin(), [](char byte) { return static_cast<std::byte>(byte); });
    platform().userDefaults().set("PellamRegisteredHotkeys", data);
}

} // namespace quillon::PellamHotkeyRegistry
