#include "Platform/X11/Keyboard.h"

#include "Platform/X11/Event.h"
#include "Platform/X11/KeyPositions.h"

// The header has a member of that name, which C++ reserves.
#define explicit explicitComponents
#include <xcb/xkb.h>
#undef explicit

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace quillon::x11 {

namespace {

/// The one thing to observe.
constexpr int anyChange = 0;

// X11/keysymdef.h
constexpr std::array<xcb_keysym_t, 2> altKeys{0xffe9, 0xffea};   // XK_Alt_L, XK_Alt_R
constexpr std::array<xcb_keysym_t, 2> superKeys{0xffeb, 0xffec}; // XK_Super_L, XK_Super_R
constexpr std::array<xcb_keysym_t, 1> numLockKeys{0xff7f};       // XK_Num_Lock

/// Another keyboard, another layout, and what programs change in one.
constexpr std::uint16_t descriptionChanges =
    XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_NAMES_NOTIFY;

bool isDescriptionChange(const xcb_generic_event_t& event) {
    // Every event of the extension has the same number; its kind follows.
    switch (as<xcb_xkb_new_keyboard_notify_event_t>(event).xkbType) {
    case XCB_XKB_NEW_KEYBOARD_NOTIFY:
    case XCB_XKB_MAP_NOTIFY:
    case XCB_XKB_NAMES_NOTIFY:
        return true;
    default:
        return false;
    }
}

/// The name of a key without the zeros that fill it up.
std::string text(const xcb_xkb_key_name_t& name) {
    const auto* const end = std::find(std::begin(name.name), std::end(name.name), '\0');
    return {std::begin(name.name), end};
}

} // namespace

std::optional<KeyCombination> Keyboard::combinationFor(const KeyPress& press) {
    const auto& now = described();
    const auto key = now.keys.find(press.keyCode);
    if (key == now.keys.end()) {
        return std::nullopt;
    }
    KeyCombination combination{key->second, 0, {0, XCB_MOD_MASK_LOCK}};
    for (const auto& [flag, bit] : now.modifiers) {
        if ((press.modifiers & flag) == 0) {
            continue;
        }
        if (bit == 0) {
            return std::nullopt;
        }
        combination.modifiers |= bit;
    }
    if (now.numLock != 0) {
        combination.lockStates.push_back(now.numLock);
        combination.lockStates.push_back(now.numLock | XCB_MOD_MASK_LOCK);
    }
    return combination;
}

std::optional<std::uint16_t> Keyboard::virtualKeyCode(xcb_keycode_t key) {
    const auto& codes = described().virtualKeyCodes;
    const auto found = codes.find(key);
    return found == codes.end() ? std::nullopt : std::optional(found->second);
}

EventFlags Keyboard::flags(std::uint16_t state) {
    EventFlags flags = 0;
    for (const auto& [flag, bit] : described().modifiers) {
        flags |= (state & bit) != 0 ? flag : 0;
    }
    return flags;
}

std::uint16_t Keyboard::state(EventFlags flags) {
    std::uint16_t state = 0;
    for (const auto& [flag, bit] : described().modifiers) {
        state |= (flags & flag) != 0 ? bit : 0;
    }
    return state;
}

RegistrationToken Keyboard::observeChanges(Task changed) {
    return observers.add(anyChange, std::move(changed));
}

const Keyboard::Description& Keyboard::described() {
    if (!description) {
        description.emplace();
        const auto* extension = xcb_get_extension_data(connection.xcb(), &xcb_xkb_id);
        // A server without the extension names no keys.
        if (extension != nullptr && extension->present != 0) {
            watch(extension->first_event);
            describeKeys(*description);
        }
        describeModifiers(*description);
    }
    return *description;
}

void Keyboard::watch(std::uint8_t eventNumber) {
    if (keyboardEvents) {
        return;
    }
    auto* const xcb = connection.xcb();
    xcb_discard_reply(xcb, xcb_xkb_use_extension(xcb, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION).sequence);
    xcb_xkb_select_events(xcb, XCB_XKB_ID_USE_CORE_KBD, descriptionChanges, 0, descriptionChanges, 0, 0, nullptr);
    keyboardEvents = connection.observeEventType(eventNumber, [this](const auto& event) {
        if (!isDescriptionChange(event) || !description) {
            return;
        }
        // One change comes as several events.
        description.reset();
        scheduler.mainAsync(weakly([](Keyboard& self) { self.observers.call(anyChange); }));
    });
}

void Keyboard::describeKeys(Description& made) const {
    auto* const xcb = connection.xcb();
    const auto cookie = xcb_xkb_get_names(xcb, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_NAME_DETAIL_KEY_NAMES);
    const Reply<xcb_xkb_get_names_reply_t> reply(xcb_xkb_get_names_reply(xcb, cookie, nullptr));
    if (!reply || (reply->which & XCB_XKB_NAME_DETAIL_KEY_NAMES) == 0) {
        return;
    }
    xcb_xkb_get_names_value_list_t lists{};
    xcb_xkb_get_names_value_list_unpack(xcb_xkb_get_names_value_list(reply.get()), reply->nTypes, reply->indicators,
                                        reply->virtualMods, reply->groupNames, reply->nKeys, reply->nKeyAliases,
                                        reply->nRadioGroups, reply->which, &lists);
    std::unordered_map<std::string, xcb_keycode_t> named;
    for (int index = 0; index < reply->nKeys; ++index) {
        named.emplace(text(lists.keyNames[index]), static_cast<xcb_keycode_t>(reply->firstKey + index));
    }
    for (const auto& position : keyPositions()) {
        const auto key = named.find(std::string(position.name));
        if (key != named.end() && made.keys.emplace(position.virtualKeyCode, key->second).second) {
            made.virtualKeyCodes.emplace(key->second, position.virtualKeyCode);
        }
    }
}

void Keyboard::describeModifiers(Description& made) const {
    auto* const xcb = connection.xcb();
    const auto& setup = *xcb_get_setup(xcb);
    const auto modifiersCookie = xcb_get_modifier_mapping(xcb);
    const auto symbolsCookie = xcb_get_keyboard_mapping(
        xcb, setup.min_keycode, static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1));
    const Reply<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(xcb, modifiersCookie, nullptr));
    const Reply<xcb_get_keyboard_mapping_reply_t> symbols(xcb_get_keyboard_mapping_reply(xcb, symbolsCookie, nullptr));
    if (!modifiers || !symbols) {
        return;
    }
    const auto symbolsOf = [&](xcb_keycode_t key) {
        const std::size_t perKey = symbols->keysyms_per_keycode;
        const auto* all = xcb_get_keyboard_mapping_keysyms(symbols.get());
        return key < setup.min_keycode ? std::span<const xcb_keysym_t>()
                                       : std::span(all + (key - setup.min_keycode) * perKey, perKey);
    };
    const std::span keys(xcb_get_modifier_mapping_keycodes(modifiers.get()),
                         static_cast<std::size_t>(xcb_get_modifier_mapping_keycodes_length(modifiers.get())));
    const std::size_t perModifier = modifiers->keycodes_per_modifier;
    // The bit of the first modifier that one of the symbols' keys sets.
    const auto bitOf = [&](const auto& wanted) -> std::uint16_t {
        for (std::size_t index = 0; index < keys.size(); ++index) {
            for (const auto symbol : symbolsOf(keys[index])) {
                if (std::find(wanted.begin(), wanted.end(), symbol) != wanted.end()) {
                    return static_cast<std::uint16_t>(1U << index / perModifier);
                }
            }
        }
        return 0;
    };
    made.modifiers = {{{eventFlagMaskShift, XCB_MOD_MASK_SHIFT},
                       {eventFlagMaskControl, XCB_MOD_MASK_CONTROL},
                       {eventFlagMaskAlternate, bitOf(altKeys)},
                       {eventFlagMaskCommand, bitOf(superKeys)}}};
    made.numLock = bitOf(numLockKeys);
}

} // namespace quillon::x11
