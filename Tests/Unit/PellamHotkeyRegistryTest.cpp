#include "PellamKit/PellamHotkeyRegistry.h"

#include "UnitTest.h"

#include <algorithm>
#include <limits>

namespace quillon {
namespace {

using ActiveContext = PellamHotkey::ActiveContext;
using Error = PellamHotkeyDecodingError;
using Reason = PellamHotkeyDecodingError::Reason;
using Hotkeys = std::vector<PellamHotkey>;

const std::string key = "PellamRegisteredHotkeys";
const PellamHotkey togglePin{"Fissa o sblocca finestra", 35, 0x140000, ActiveContext::anywhere};

std::size_t hashOf(const PellamHotkey& hotkey) {
    return std::hash<PellamHotkey>()(hotkey);
}

Hotkeys decoded(std::string_view json) {
    auto result = decodeHotkeys(json);
    if (auto* hotkeys = std::get_if<Hotkeys>(&result)) {
        return std::move(*hotkeys);
    }
    ADD_FAILURE() << json << " does not decode";
    return {};
}

/// Why the text does not decode.
std::optional<Error> fault(std::string_view json) {
    const auto result = decodeHotkeys(json);
    const auto* error = std::get_if<Error>(&result);
    return error == nullptr ? std::nullopt : std::optional(*error);
}

/// A list of one record, with these values in JSON.
std::string list(const std::string& title, const std::string& keyCode, const std::string& modifiers,
                 const std::string& context) {
    return R"([{"actionTitle":)" + title + R"(,"keyCode":)" + keyCode + R"(,"modifiers":)" + modifiers +
           R"(,"activeContext":)" + context + "}]";
}

class PellamHotkeyRegistryTest : public UnitTest {
protected:
    /// The text whose bytes are stored; none when there are none.
    std::optional<std::string> stored() {
        const auto value = desktop.userDefaults().object(key);
        const auto* data = value ? std::get_if<PropertyData>(&*value) : nullptr;
        if (data == nullptr) {
            return std::nullopt;
        }
        std::string text(data->size(), '\0');
        std::ranges::transform(*data, text.begin(), [](std::byte byte) { return static_cast<char>(byte); });
        return text;
    }
};

using PellamHotkeyRegistryEdgeCases = PellamHotkeyRegistryTest;

TEST_F(PellamHotkeyRegistryEdgeCases, PublishingNothingStoresAnEmptyArray) {
    PellamHotkeyRegistry::publish({});
    EXPECT_EQ(stored(), "[]");
}

TEST_F(PellamHotkeyRegistryEdgeCases, HotkeysThatDifferOnlyInTheirContextAreDifferentAndHashDifferently) {
    auto browser = togglePin;
    browser.activeContext = ActiveContext::browser;
    EXPECT_NE(togglePin, browser);
    EXPECT_NE(hashOf(togglePin), hashOf(browser));
}

TEST_F(PellamHotkeyRegistryEdgeCases, WhatIsStoredDecodesToWhatWasPublished) {
    const Hotkeys published{
        togglePin,
        {"", 0, 0, ActiveContext::browser},
        {"\"Città\"\n\\ 🪟", 65535, std::numeric_limits<std::uint64_t>::max(), ActiveContext::anywhere},
    };
    PellamHotkeyRegistry::publish(published);
    EXPECT_EQ(decoded(stored().value_or("")), published);
}

TEST_F(PellamHotkeyRegistryEdgeCases, AnyOtherContextDoesNotDecode) {
    EXPECT_EQ(decoded(list(R"("a")", "1", "2", R"("browser")")).front().activeContext, ActiveContext::browser);
    for (const auto* context : {R"("")", R"("Anywhere")", R"("browser ")", R"("finder")"}) {
        EXPECT_EQ(fault(list(R"("a")", "1", "2", context)), (Error{Reason::unknownContext, "activeContext"}))
            << context;
    }
}

TEST_F(PellamHotkeyRegistryTest, TheTextOfTheBuiltInShortcut) {
    PellamHotkeyRegistry::publish({togglePin});
    EXPECT_EQ(stored(), R"([{"actionTitle":"Fissa o sblocca finestra","keyCode":35,"modifiers":1310720,)"
                        R"("activeContext":"anywhere"}])");
}

TEST_F(PellamHotkeyRegistryTest, PublishingReplacesWhatWasThereWhateverItWas) {
    for (const PropertyValue& damaged : {PropertyValue("danneggiato"), PropertyValue(PropertyData{std::byte{0xFF}})}) {
        desktop.userDefaults().store(key, damaged);
        PellamHotkeyRegistry::publish({togglePin});
        EXPECT_EQ(decoded(stored().value_or("")), Hotkeys{togglePin});
    }
}

TEST_F(PellamHotkeyRegistryTest, ATitleThatCannotBeEncodedLeavesTheOldValue) {
    PellamHotkeyRegistry::publish({togglePin});
    desktop.journal().clear();
    turnLoggingOn();
    PellamHotkeyRegistry::publish({togglePin, {"\xC3", 1, 2, ActiveContext::anywhere}});
    EXPECT_EQ(desktop.journal().take(), Lines{});
    EXPECT_EQ(decoded(stored().value_or("")), Hotkeys{togglePin});
    EXPECT_EQ(takeLog(), Lines{});
}

TEST(PellamHotkeyTest, EqualityAndHashCountEveryField) {
    for (const auto& other : Hotkeys{
             {"Fissa", 35, 0x140000, ActiveContext::anywhere},
             {togglePin.actionTitle, 34, 0x140000, ActiveContext::anywhere},
             {togglePin.actionTitle, 35, 0x100000, ActiveContext::anywhere},
             {togglePin.actionTitle, 35, 0x140000, ActiveContext::browser},
         }) {
        EXPECT_NE(other, togglePin);
        EXPECT_NE(hashOf(other), hashOf(togglePin));
    }
    const auto same = togglePin;
    EXPECT_EQ(same, togglePin);
    EXPECT_EQ(hashOf(same), hashOf(togglePin));
}

TEST(PellamHotkeyTest, TitlesCompareByCanonicalEquivalence) {
    const PellamHotkey composed{"Citt\u00E0", 1, 2, ActiveContext::anywhere};
    const PellamHotkey decomposed{"Citta\u0300", 1, 2, ActiveContext::anywhere};
    EXPECT_EQ(composed, decomposed);
    EXPECT_EQ(hashOf(composed), hashOf(decomposed));
    // A ligature is equivalent to its letters only by compatibility.
    const PellamHotkey ligature{"\uFB01ssa", 1, 2, ActiveContext::anywhere};
    const PellamHotkey letters{"fissa", 1, 2, ActiveContext::anywhere};
    EXPECT_NE(ligature, letters);
}

TEST(PellamHotkeyTest, ContextsHaveTheirRawValues) {
    EXPECT_EQ(rawValue(ActiveContext::anywhere), "anywhere");
    EXPECT_EQ(rawValue(ActiveContext::browser), "browser");
}

TEST(PellamHotkeyTest, KeysMayComeInAnyOrderAndOthersAreIgnored) {
    EXPECT_EQ(decoded(R"( [ {"activeContext": "anywhere", "modifiers": 1310720, "note": null, "keyCode": 35,
                              "actionTitle": "Fissa o sblocca finestra"} ] )"),
              Hotkeys{togglePin});
}

TEST(PellamHotkeyTest, EveryKeyIsRequired) {
    EXPECT_EQ(fault(R"([{"keyCode":1,"modifiers":2,"activeContext":"anywhere"}])"),
              (Error{Reason::missingKey, "actionTitle"}));
    EXPECT_EQ(fault(R"([{"actionTitle":"a","modifiers":2,"activeContext":"anywhere"}])"),
              (Error{Reason::missingKey, "keyCode"}));
    EXPECT_EQ(fault(R"([{"actionTitle":"a","keyCode":1,"activeContext":"anywhere"}])"),
              (Error{Reason::missingKey, "modifiers"}));
    EXPECT_EQ(fault(R"([{"actionTitle":"a","keyCode":1,"modifiers":2}])"),
              (Error{Reason::missingKey, "activeContext"}));
}

TEST(PellamHotkeyTest, EveryValueHasItsType) {
    const std::string text = R"("a")";
    const std::string context = R"("anywhere")";
    for (const auto* title : {"1", "null", "[]", "true"}) {
        EXPECT_EQ(fault(list(title, "1", "2", context)), (Error{Reason::wrongType, "actionTitle"})) << title;
    }
    for (const auto* number : {R"("1")", "null", "true", "{}"}) {
        EXPECT_EQ(fault(list(text, number, "2", context)), (Error{Reason::wrongType, "keyCode"})) << number;
        EXPECT_EQ(fault(list(text, "1", number, context)), (Error{Reason::wrongType, "modifiers"})) << number;
    }
    EXPECT_EQ(fault(list(text, "1", "2", "0")), (Error{Reason::wrongType, "activeContext"}));
}

TEST(PellamHotkeyTest, NumbersFitTheirFields) {
    const std::string text = R"("a")";
    const std::string context = R"("anywhere")";
    for (const auto* keyCode : {"65536", "-1", "1.5", "1e30"}) {
        EXPECT_EQ(fault(list(text, keyCode, "2", context)), (Error{Reason::numberDoesNotFit, "keyCode"})) << keyCode;
    }
    for (const auto* modifiers : {"18446744073709551616", "-1", "0.5"}) {
        EXPECT_EQ(fault(list(text, "1", modifiers, context)), (Error{Reason::numberDoesNotFit, "modifiers"}))
            << modifiers;
    }
    EXPECT_EQ(decoded(list(text, "65535", "18446744073709551615", context)),
              (Hotkeys{{"a", 65535, std::numeric_limits<std::uint64_t>::max(), ActiveContext::anywhere}}));
}

TEST(PellamHotkeyTest, WhatIsNoListOfRecordsDoesNotDecode) {
    for (const auto* text : {"", "[", "[]]", "{\"a\":}", "[{\"actionTitle\":\"\xFF\"}]", "[1e999]"}) {
        EXPECT_EQ(fault(text), (Error{Reason::notJSON, ""})) << text;
    }
    for (const auto* text : {"{}", "null", "[1]", "[[]]"}) {
        EXPECT_EQ(fault(text), (Error{Reason::wrongType, ""})) << text;
    }
    EXPECT_EQ(decoded("[]"), Hotkeys{});
}

TEST(PellamHotkeyTest, OneBadRecordSpoilsTheList) {
    const auto good = encodeHotkeys({togglePin}).value_or("");
    EXPECT_EQ(fault(good.substr(0, good.size() - 1) + ",{}]"), (Error{Reason::missingKey, "actionTitle"}));
}

} // namespace
} // namespace quillon
