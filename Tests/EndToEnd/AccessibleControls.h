#pragma once

#include "Picture.h"
#include "Program.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quillon::e2e {

/// What a program tells of one part of its windows on the accessibility bus, as a screen reader would read it.
struct AccessibleControl {
    /// AT-SPI's number.
    enum class Role : unsigned {
        checkBox = 7,
        comboBox = 11,
        frame = 23,
        label = 29,
        listItem = 32,
        button = 43,
    };

    Role role{};
    std::string name;
    /// The name of what labels it; empty for none.
    std::string label;
    std::string description;
    /// On the screen.
    Rect place;
    bool isChecked = false;
    bool isFocused = false;
    /// In a window that is shown, whether covered or not.
    bool isShowing = false;
};

/// Reads the windows of programs on a desktop's accessibility bus, which must run.
class AccessibleControls {
public:
    explicit AccessibleControls(const Environment& environment);
    ~AccessibleControls();
    AccessibleControls(const AccessibleControls&) = delete;
    AccessibleControls& operator=(const AccessibleControls&) = delete;

    /// Everything that the program shows, depth-first; empty while it is not on the bus.
    [[nodiscard]] std::vector<AccessibleControl> of(pid_t process) const;

private:
    struct Reference;

    [[nodiscard]] static std::vector<Reference> referencesIn(const QDBusArgument& list);
    [[nodiscard]] std::vector<Reference> children(const Reference& parent) const;
    [[nodiscard]] QDBusMessage call(const Reference& object, const char* interface, const char* method,
                                    const QVariantList& arguments = {}) const;
    [[nodiscard]] std::string text(const Reference& object, const char* property) const;
    [[nodiscard]] std::string labelOf(const Reference& object) const;
    [[nodiscard]] AccessibleControl read(const Reference& object) const;
    void collect(const Reference& object, std::vector<AccessibleControl>& found) const;

    QDBusConnection bus;
};

} // namespace quillon::e2e
