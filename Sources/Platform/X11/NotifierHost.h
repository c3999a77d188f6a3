#pragma once

#include <QDBusConnection>
#include <QObject>

#include <functional>

namespace quillon::x11 {

/// The panel that shows StatusNotifierItems (org.kde.StatusNotifierWatcher on the session bus). It may come, go and
/// come back at any time; nothing here waits for it. Main thread.
class NotifierHost final : public QObject {
    Q_OBJECT

public:
    enum class State {
        unknown, ///< it was asked for the first time and has not answered yet
        absent,
        present,
    };

    NotifierHost();

    [[nodiscard]] State state() const { return hostState; }
    /// Called after each answer. `present` may follow `present`: when another panel has taken over, it knows of no
    /// items yet.
    std::function<void()> onChange;

    /// Asks the panel to show the item of the service of that name.
    void registerItem(const QString& service) const;

private Q_SLOTS:
    void ask();

private:
    void set(State state);

    QDBusConnection bus;
    State hostState = State::absent;
    /// Tells the answer to the latest question from those to earlier ones.
    int questions = 0;
};

} // namespace quillon::x11
