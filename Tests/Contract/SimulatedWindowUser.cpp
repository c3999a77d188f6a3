#include "SimulatedWindowUser.h"

#include "Simulated/SimulatedTitledWindows.h"

#include <algorithm>
#include <stdexcept>
#include <variant>

namespace quillon::contract {

namespace {

simulated::SimulatedTitledWindow& simulation(TitledWindow& window) {
    return dynamic_cast<simulated::SimulatedTitledWindow&>(window);
}

template <class... Functions>
struct Overloaded : Functions... {
    using Functions::operator()...;
};

class Texts {
public:
    void add(const std::string& text) { all.push_back(text); }
    void add(const FormRow& row) {
        add(row.title);
        if (!row.note.empty()) {
            add(row.note);
        }
        std::visit(Overloaded{[](const Switch&) {},
                              [this](const Picker& picker) {
                                  add(picker.selected ? picker.options.at(*picker.selected) : std::string());
                              },
                              [this](const RowItems& items) {
                                  for (const auto& item : items) {
                                      addItem(item);
                                  }
                              }},
                   row.control);
    }
    void addItem(const auto& item) {
        std::visit(Overloaded{[this](const Label& label) { add(label.text); },
                              [this](const Button& button) { add(button.title); },
                              [this](const Badge& badge) { add(badge.title); },
                              [this](const TextBlock& block) {
                                  for (const auto& label : block.labels) {
                                      add(label.text);
                                  }
                              },
                              [](const ApplicationIcon&) {}, [](const Divider&) {}},
                   item);
    }

    std::vector<std::string> all;
};

} // namespace

std::vector<std::string> SimulatedWindowUser::texts(TitledWindow& window) {
    Texts texts;
    const auto& content = simulation(window).content();
    if (const auto* column = std::get_if<Column>(&content)) {
        for (const auto& item : column->items) {
            texts.addItem(item);
        }
        return texts.all;
    }
    const auto& form = std::get<Form>(content);
    for (const auto& section : form.sections) {
        texts.add(section.title);
        for (const auto& row : section.rows) {
            texts.add(row);
        }
    }
    texts.add(form.closing.title);
    return texts.all;
}

bool SimulatedWindowUser::isOn(TitledWindow& window, const std::string& row) {
    for (const auto& section : std::get<Form>(simulation(window).content()).sections) {
        const auto found = std::ranges::find(section.rows, row, &FormRow::title);
        if (found != section.rows.end()) {
            return std::get<Switch>(found->control).isOn;
        }
    }
    throw std::runtime_error("there is no row " + row);
}

std::optional<std::string> SimulatedWindowUser::focusedRow(TitledWindow& window) {
    return simulation(window).firstResponder();
}

void SimulatedWindowUser::press(TitledWindow& window, const std::string& button) {
    simulation(window).press(button);
}

void SimulatedWindowUser::turnSwitch(TitledWindow& window, const std::string& row, bool on) {
    simulation(window).turnSwitch(row, on);
}

void SimulatedWindowUser::choose(TitledWindow& window, const std::string& row, const std::string& option) {
    simulation(window).choose(row, option);
}

void SimulatedWindowUser::focus(TitledWindow& window, const std::string& row) {
    simulation(window).focus(row);
}

void SimulatedWindowUser::clickCloseButton(TitledWindow& window) {
    simulation(window).clickCloseButton();
}

} // namespace quillon::contract
