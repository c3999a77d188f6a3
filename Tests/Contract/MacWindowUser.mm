#include "MacWindowUser.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/NativeWindow.h"

#import <AppKit/AppKit.h>

#include <functional>
#include <stdexcept>

namespace quillon::contract {

namespace {

using macos::nativeWindow;
using macos::toNSString;
using macos::toString;

NSArray<NSView*>* childrenOf(NSView* view) {
    if ([view isKindOfClass:[NSControl class]]) {
        return @[]; // What it consists of is its own affair.
    }
    if ([view isKindOfClass:[NSStackView class]]) {
        return static_cast<NSStackView*>(view).views;
    }
    return view.subviews;
}

/// Depth-first; nil when there is none.
NSView* _Nullable firstView(NSView* view, const std::function<bool(NSView*)>& isWanted) {
    if (isWanted(view)) {
        return view;
    }
    for (NSView* child in childrenOf(view)) {
        if (NSView* const found = firstView(child, isWanted)) {
            return found;
        }
    }
    return nil;
}

NSView* requiredView(TitledWindow& window, const std::string& problem, const std::function<bool(NSView*)>& isWanted) {
    NSView* const content = nativeWindow(window).contentView;
    NSView* const found = content != nil ? firstView(content, isWanted) : nil;
    if (found == nil) {
        throw std::runtime_error(problem);
    }
    return found;
}

/// None for a view without a text of its own.
std::optional<std::string> textOf(NSView* _Nullable view) {
    if ([view isKindOfClass:[NSTextField class]]) {
        return toString(static_cast<NSTextField*>(view).stringValue);
    }
    if ([view isKindOfClass:[NSPopUpButton class]]) {
        return macos::toOptionalString(static_cast<NSPopUpButton*>(view).titleOfSelectedItem).value_or("");
    }
    if ([view isKindOfClass:[NSButton class]]) {
        return toString(static_cast<NSButton*>(view).title);
    }
    return std::nullopt;
}

/// The title of the row whose title and controls stand in that view.
std::optional<std::string> rowTitle(NSView* _Nullable line) {
    if (![line isKindOfClass:[NSStackView class]]) {
        return std::nullopt;
    }
    NSStackView* const stack = static_cast<NSStackView*>(line);
    return stack.orientation == NSUserInterfaceLayoutOrientationHorizontal ? textOf(stack.views.firstObject)
                                                                           : std::nullopt;
}

/// The first after the title.
NSView* firstControl(TitledWindow& window, const std::string& row) {
    NSView* const line =
        requiredView(window, "there is no row " + row, [&](NSView* view) { return rowTitle(view) == row; });
    return childrenOf(line)[1];
}

NSSwitch* switchOf(TitledWindow& window, const std::string& row) {
    NSView* const control = firstControl(window, row);
    if (![control isKindOfClass:[NSSwitch class]]) {
        throw std::runtime_error("there is no switch in the row " + row);
    }
    return static_cast<NSSwitch*>(control);
}

void press(NSView* control) {
    if (![control accessibilityPerformPress]) {
        throw std::runtime_error("a control cannot be pressed");
    }
}

void appendTexts(std::vector<std::string>& texts, NSView* view) {
    if (const auto text = textOf(view)) {
        texts.push_back(*text);
        return;
    }
    NSArray<NSView*>* const children = childrenOf(view);
    // The note stands beneath the title and the controls, and is read between the two.
    const bool hasNote =
        children.count == 2 && rowTitle(children[0]) && [children[1] isKindOfClass:[NSTextField class]];
    if (!hasNote) {
        for (NSView* child in children) {
            appendTexts(texts, child);
        }
        return;
    }
    std::vector<std::string> line;
    appendTexts(line, children[0]);
    appendTexts(line, children[1]);
    texts.push_back(line.front());
    texts.push_back(line.back());
    texts.insert(texts.end(), line.begin() + 1, line.end() - 1);
}

} // namespace

std::vector<std::string> MacWindowUser::texts(TitledWindow& window) {
    std::vector<std::string> texts;
    if (NSView* const content = nativeWindow(window).contentView) {
        appendTexts(texts, content);
    }
    return texts;
}

bool MacWindowUser::isOn(TitledWindow& window, const std::string& row) {
    return switchOf(window, row).state == NSControlStateValueOn;
}

std::optional<std::string> MacWindowUser::focusedRow(TitledWindow& window) {
    NSResponder* const responder = nativeWindow(window).firstResponder;
    if (![responder isKindOfClass:[NSView class]]) {
        return std::nullopt; // The window itself, when nothing in it has the focus.
    }
    return rowTitle(static_cast<NSView*>(responder).superview);
}

void MacWindowUser::press(TitledWindow& window, const std::string& button) {
    contract::press(requiredView(window, "there is no button " + button, [&](NSView* view) {
        return [view isKindOfClass:[NSButton class]] && ![view isKindOfClass:[NSPopUpButton class]] &&
               textOf(view) == button;
    }));
}

void MacWindowUser::turnSwitch(TitledWindow& window, const std::string& row, bool on) {
    if (isOn(window, row) != on) {
        contract::press(switchOf(window, row));
    }
}

void MacWindowUser::choose(TitledWindow& window, const std::string& row, const std::string& option) {
    NSView* const control = firstControl(window, row);
    if (![control isKindOfClass:[NSPopUpButton class]]) {
        throw std::runtime_error("there is no picker in the row " + row);
    }
    // Its menu would keep the main thread, on which the test runs, until it closes.
    NSPopUpButton* const picker = static_cast<NSPopUpButton*>(control);
    [picker selectItemWithTitle:toNSString(option)];
    [picker sendAction:picker.action to:picker.target];
}

void MacWindowUser::focus(TitledWindow& window, const std::string& row) {
    NSView* const control = firstControl(window, row);
    NSWindow* const native = nativeWindow(window);
    if (![native makeFirstResponder:control] || native.firstResponder != control) {
        throw std::runtime_error("a control does not take the keyboard focus: in System Settings, under Keyboard, "
                                 "switch on \"Keyboard navigation\"");
    }
}

void MacWindowUser::clickCloseButton(TitledWindow& window) {
    [nativeWindow(window) performClose:nil];
}

} // namespace quillon::contract
