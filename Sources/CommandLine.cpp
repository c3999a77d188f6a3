#include "CommandLine.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>

namespace quillon::CommandLine {

namespace {

constexpr std::array<std::string_view, 8> scriptVerbs{"pin",  "unpin",    "toggle", "list",
                                                      "menu", "settings", "about",  "status"};

constexpr std::string_view inputRoutingOption = "--input-routing";

UsageError usageError(std::string_view problem) {
    return {fmt::format("{}: \"quillon --help\" mostra l'uso", problem)};
}

/// An option that stands alone.
Request alone(Request request, const std::vector<std::string>& arguments) {
    if (arguments.size() > 1) {
        return usageError(fmt::format("«{}» non vuole argomenti", arguments.front()));
    }
    return request;
}

/// What follows the option's name; none for a value that does not exist.
std::optional<InputRouting> inputRoutingOf(std::string_view value) {
    return value == "=forward"  ? std::optional(InputRouting::forward)
           : value == "=scroll" ? std::optional(InputRouting::scroll)
                                : std::nullopt;
}

Request parseInputRouting(const std::vector<std::string>& arguments) {
    const auto value = std::string_view(arguments.front()).substr(inputRoutingOption.size());
    const auto routing = inputRoutingOf(value);
    if (!routing) {
        return usageError(fmt::format("«{}» vuole =forward o =scroll", inputRoutingOption));
    }
    return alone(Run{*routing}, arguments);
}

Request parseDefaults(const std::vector<std::string>& arguments) {
    const auto verb = arguments.size() > 1 ? arguments[1] : std::string();
    const auto count = arguments.size();
    if (verb == "read" && count == 3) {
        return ReadDefault{arguments[2]};
    }
    if (verb == "write" && count == 4) {
        return WriteDefault{arguments[2], arguments[3]};
    }
    if (verb == "delete" && count == 3) {
        return DeleteDefault{arguments[2]};
    }
    return usageError("«defaults» vuole read CHIAVE, write CHIAVE VALORE o delete CHIAVE");
}

} // namespace

Request parse(const std::vector<std::string>& arguments) {
    if (arguments.empty()) {
        return Run();
    }
    const auto& first = arguments.front();
    if (first == "--help" || first == "-h") {
        return alone(ShowHelp(), arguments);
    }
    if (first == "--version") {
        return alone(ShowVersion(), arguments);
    }
    if (first == "--list-windows") {
        return alone(ListWindows(), arguments);
    }
    if (first == inputRoutingOption || first.starts_with(fmt::format("{}=", inputRoutingOption))) {
        return parseInputRouting(arguments);
    }
    if (first == "defaults") {
        return parseDefaults(arguments);
    }
    if (std::find(scriptVerbs.begin(), scriptVerbs.end(), first) != scriptVerbs.end()) {
        return Script{{first, {arguments.begin() + 1, arguments.end()}}};
    }
    const std::string_view kind = first.starts_with("-") ? "Opzione sconosciuta" : "Comando sconosciuto";
    return usageError(fmt::format("{} «{}»", kind, first));
}

std::string_view helpText() {
    return R"(Uso: quillon [COMANDO | OPZIONE]

Tiene in vista una copia dal vivo della finestra di un'altra applicazione.
Senza argomenti avvia Quillon; se è già in esecuzione, lo riapre.

Comandi per il programma in esecuzione:
  pin [FINESTRA|front]        fissa la finestra indicata o quella in primo piano
  unpin [FINESTRA|front|all]  sblocca la finestra indicata, quella in primo piano o tutte
  toggle                      fissa o sblocca la finestra in primo piano
  list                        elenca le finestre fissate: numero, tabulazione, nome
  menu                        apre il menu di Quillon dov'è il puntatore
  settings                    apre le impostazioni
  about                       apre le informazioni su Quillon
  status                      mostra come stanno la scorciatoia, l'icona e le finestre fissate

Impostazioni:
  defaults read CHIAVE           mostra un valore
  defaults write CHIAVE VALORE   scrive un valore (true, false, un numero o un testo)
  defaults delete CHIAVE         elimina un valore

Opzioni:
  --input-routing=forward   avvia Quillon; clic e scorrimento vanno alla finestra vera (predefinito)
  --input-routing=scroll    avvia Quillon; lo scorrimento va alla finestra vera, un clic passa a essa
  --list-windows            elenca le finestre che si possono fissare
  --help                    mostra questo aiuto
  --version                 mostra la versione

FINESTRA è un numero di finestra, decimale o esadecimale (0x…).

Stato d'uscita: 0 riuscito; 1 non riuscito; 2 uso errato; 3 nessun display X adatto;
4 Quillon non è in esecuzione.
)";
}

} // namespace quillon::CommandLine
