#pragma once

#include "Platform/Geometry.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// What a titled window of the program shows, as plain values: which controls, in which order, with which texts and
/// what they do. A platform draws them in its own look and keeps no text and no rule of its own. The actions run on the
/// main thread and may hand the window other content.
namespace quillon {

/// How a text stands beside the others.
enum class TextStyle {
    body,
    /// The largest text of a window.
    title,
    /// Small, in the colour of secondary texts.
    caption,
    /// Small, in orange.
    captionWarning,
};

struct Label {
    std::string text;
    TextStyle style = TextStyle::body;
};

struct Button {
    std::string title;
    std::function<void()> action;
    /// The Escape key presses it.
    bool isCancel = false;
};

/// Tells that something is granted: a word with a system symbol.
struct Badge {
    std::string title;
    std::string symbolName;
};

struct Switch {
    bool isOn = false;
    std::function<void(bool)> setOn;
};

/// A choice of one.
struct Picker {
    std::vector<std::string> options;
    /// None when what is stored is none of the options.
    std::optional<std::size_t> selected;
    std::function<void(std::size_t)> select;
};

using RowItem = std::variant<Label, Button, Badge>;
using RowItems = std::vector<RowItem>;

/// One line of a form: its title at the leading edge, its control or its items at the trailing edge, its note beneath.
struct FormRow {
    std::string title;
    /// In `TextStyle::caption`, wrapped; empty for none.
    std::string note;
    std::variant<RowItems, Switch, Picker> control;
};

struct FormSection {
    std::string title;
    std::vector<FormRow> rows;
};

/// Grouped sections that scroll, and beneath them a button at the trailing edge, which does not.
struct Form {
    std::vector<FormSection> sections;
    Button closing;
    /// In points.
    Size minimumSize;
};

struct ApplicationIcon {
    /// In points.
    Size size;
};

struct Divider {};

/// Texts that belong together, closer to one another than the items of a column.
struct TextBlock {
    std::vector<Label> labels;
};

using ColumnItem = std::variant<ApplicationIcon, Label, TextBlock, Divider, Button>;

/// Items one beneath the other, centred; texts wrap. In points.
struct Column {
    std::vector<ColumnItem> items;
    double width = 0;
    double spacing = 0;
    /// Around all of them.
    double padding = 0;
};

using WindowContent = std::variant<Form, Column>;

/// True when the same controls can show both rows, so that only their texts and values differ.
[[nodiscard]] bool haveSameControls(const FormRow& one, const FormRow& other);

} // namespace quillon
