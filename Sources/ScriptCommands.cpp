#include "ScriptCommands.h"

#include "ExitStatus.h"
#include "PellamKit/PellamStatusItemVisibility.h"
#include "PinnedWindowTracker.h"
#include "Platform/Platform.h"
#include "Platform/StatusBar.h"
#include "ProgrammingError.h"
#include "WindowDetector.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <map>

namespace quillon::ScriptCommands {

namespace {

ScriptReply failure(std::string text) {
    return {ExitStatus::failure, std::move(text)};
}

ScriptReply usage(std::string text) {
    return {ExitStatus::usage, std::move(text)};
}

std::optional<WindowID> parseWindowID(std::string_view text) {
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
        base = 16;
    }
    WindowID number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

ScriptReply notAWindowNumber(const std::string& argument) {
    return usage(fmt::format("«{}» non è un numero di finestra: \"quillon --list-windows\" li elenca", argument));
}

std::string describe(WindowID windowID, const std::string& label) {
    return fmt::format("{} (finestra {})", label, windowID);
}

ScriptReply pin(PinnedWindowTracker& tracker, const std::string& argument) {
    std::optional<ForeignWindow> window;
    if (argument == "front") {
        window = WindowDetector::getFrontmostForeignWindow();
        if (!window) {
            return failure("Nessuna finestra da fissare: porta in primo piano la finestra di un'altra applicazione");
        }
    } else {
        const auto windowID = parseWindowID(argument);
        if (!windowID) {
            return notAWindowNumber(argument);
        }
        window = WindowDetector::foreignWindow(*windowID);
        if (!window) {
            return failure(fmt::format("La finestra {} non esiste o non si può fissare: \"quillon --list-windows\" "
                                       "elenca quelle che si possono fissare",
                                       *windowID));
        }
    }
    const auto text = describe(window->windowID, PinnedWindow(*window).displayLabel());
    if (tracker.isPinned(window->windowID)) {
        return {ExitStatus::success, "Già fissata: " + text};
    }
    tracker.pin(*window);
    tracker.showIfBehind(window->windowID);
    return {ExitStatus::success, "Fissata: " + text};
}

ScriptReply unpin(PinnedWindowTracker& tracker, const std::string& argument) {
    if (argument == "all") {
        const auto count = tracker.pinnedWindows().size();
        tracker.unpinAll();
        return {ExitStatus::success, fmt::format("Finestre sbloccate: {}", count)};
    }
    std::optional<WindowID> windowID;
    if (argument == "front") {
        const auto window = WindowDetector::getFrontmostForeignWindow();
        if (!window) {
            return failure("Nessuna finestra da sbloccare in primo piano");
        }
        windowID = window->windowID;
    } else {
        windowID = parseWindowID(argument);
        if (!windowID) {
            return notAWindowNumber(argument);
        }
    }
    if (!tracker.isPinned(*windowID)) {
        return failure(fmt::format("La finestra {} non è fissata: \"quillon list\" elenca quelle fissate", *windowID));
    }
    tracker.unpin(*windowID);
    return {ExitStatus::success, fmt::format("Sbloccata: finestra {}", *windowID)};
}

ScriptReply toggle(const Program& program) {
    const auto before = program.tracker.pinnedWindows();
    program.togglePinFrontmostWindow();
    const auto& after = program.tracker.pinnedWindows();
    if (after.size() == before.size()) {
        return failure("Nessuna finestra da fissare: porta in primo piano la finestra di un'altra applicazione");
    }
    const bool pinned = after.size() > before.size();
    const auto& larger = pinned ? after : before;
    const auto& smaller = pinned ? before : after;
    const auto changed = std::find_if(larger.begin(), larger.end(),
                                      [&](const PinnedWindow& window) { return !smaller.contains(window); });
    return {ExitStatus::success,
            (pinned ? "Fissata: " : "Sbloccata: ") + describe(changed->windowID, changed->displayLabel())};
}

/// A line for each pinned window, ordered by number: the number, a tab, the label.
ScriptReply list(const PinnedWindowTracker& tracker) {
    std::map<WindowID, std::string> labels;
    for (const auto& window : tracker.pinnedWindows()) {
        labels[window.windowID] = window.displayLabel();
    }
    std::string text;
    for (const auto& [windowID, label] : labels) {
        text += fmt::format("{}{}\t{}", text.empty() ? "" : "\n", windowID, label);
    }
    return {ExitStatus::success, text};
}

ScriptReply menu(const Program& program) {
    if (!program.openMenuAtPointer()) {
        return failure("Il menu non si può aprire in questo momento: riprova");
    }
    return {ExitStatus::success, ""};
}

std::string describeShortcut(const Program& program) {
    switch (program.shortcutState) {
    case ShortcutState::notSet:
        return "non impostata";
    case ShortcutState::waitingForPermission:
        return program.shortcut + ", in attesa del permesso di Accessibilità";
    case ShortcutState::active:
        return program.shortcut + ", attiva";
    case ShortcutState::heldByAnotherProgram:
        return program.shortcut +
               ", usata da un altro programma (scegline un'altra nelle impostazioni o liberala in quel programma)";
    case ShortcutState::missingOnKeyboard:
        return program.shortcut + ", che su questa tastiera manca (scegline un'altra nelle impostazioni)";
    }
    programmingError("an unknown state of the shortcut");
}

ScriptReply status(const Program& program) {
    const auto* icon = PellamStatusItemVisibility::isVisible() ? "visibile" : "nascosta (\"quillon\" la mostra)";
    const auto* bar = platform().statusBar().showsItems() ? "presente" : "assente (\"quillon menu\" apre il menu)";
    return {ExitStatus::success,
            fmt::format("Scorciatoia: {}\nIcona: {}\nBarra di stato: {}\nFinestre fissate: {}",
                        describeShortcut(program), icon, bar, program.tracker.pinnedWindows().size())};
}

} // namespace

ScriptReply perform(const ScriptCommand& command, const Program& program) {
    const auto& arguments = command.arguments;
    const bool takesWindow = command.verb == "pin" || command.verb == "unpin";
    if (arguments.size() > (takesWindow ? 1U : 0U)) {
        return usage(fmt::format("Troppi argomenti per «{}»: \"quillon --help\" mostra l'uso", command.verb));
    }
    const std::string window = arguments.empty() ? "front" : arguments.front();
    if (command.verb == "pin") {
        return pin(program.tracker, window);
    }
    if (command.verb == "unpin") {
        return unpin(program.tracker, window);
    }
    if (command.verb == "toggle") {
        return toggle(program);
    }
    if (command.verb == "list") {
        return list(program.tracker);
    }
    if (command.verb == "menu") {
        return menu(program);
    }
    if (command.verb == "settings") {
        program.openSettings();
        return {ExitStatus::success, ""};
    }
    if (command.verb == "about") {
        program.openAbout();
        return {ExitStatus::success, ""};
    }
    if (command.verb == "status") {
        return status(program);
    }
    return usage(fmt::format("Comando sconosciuto «{}»: \"quillon --help\" elenca i comandi", command.verb));
}

} // namespace quillon::ScriptCommands
