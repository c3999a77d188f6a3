#pragma once

#include "Platform/Accessibility.h"
#include "Platform/X11/Connection.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>

#include <chrono>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

namespace quillon::x11 {

/// Until when a call waits at most.
using Deadline = std::chrono::steady_clock::time_point;

/// An object on the accessibility bus (AT-SPI).
struct AccessibleReference {
    QString service;
    QString path;
};

/// The accessibility bus: a message bus of its own, whose address the session bus tells. The connection is made with
/// the first call, and again with the first one after it was lost; nothing here starts the bus or waits for it. Any
/// thread; an answer needs no event loop.
class AccessibilityBus {
public:
    AccessibilityBus();
    ~AccessibilityBus();
    AccessibilityBus(const AccessibilityBus&) = delete;
    AccessibilityBus& operator=(const AccessibilityBus&) = delete;

    /// Sends all the calls, then waits for the answers, which have the order of the calls. Where there is none in
    /// time, or no bus, the answer is an error.
    [[nodiscard]] std::vector<QDBusMessage> call(std::span<const QDBusMessage> messages, Deadline deadline);
    [[nodiscard]] QDBusMessage call(const QDBusMessage& message, Deadline deadline);

private:
    [[nodiscard]] std::optional<QDBusConnection> connect(Deadline deadline);

    /// Qt's name for the connection.
    QString name;
    std::mutex mutex;
};

/// A call of an object's method; the names are those of AT-SPI.
[[nodiscard]] QDBusMessage methodCall(const AccessibleReference& object, const char* interface, const char* method,
                                      const QVariantList& arguments = {});
[[nodiscard]] QDBusMessage propertyRead(const AccessibleReference& object, const char* interface, const char* property);

/// Asks an object where it is, in coordinates of the screen.
[[nodiscard]] QDBusMessage extentsCall(const AccessibleReference& object);

/// What an answer amounts to as an Accessibility call's result: success for a reply of that signature only.
[[nodiscard]] AccessibilityError resultOf(const QDBusMessage& answer, const char* signature);

// What an answer holds; none when it is an error or of another type.
[[nodiscard]] std::optional<double> propertyNumber(const QDBusMessage& answer);
[[nodiscard]] std::optional<QString> propertyText(const QDBusMessage& answer);
[[nodiscard]] std::optional<std::uint32_t> numberIn(const QDBusMessage& answer);
[[nodiscard]] std::optional<PixelRect> extentsIn(const QDBusMessage& answer);

/// What every object has.
inline constexpr auto accessibleInterface = "org.a11y.atspi.Accessible";

struct AccessibleChildren {
    AccessibilityError error = AccessibilityError::success;
    /// Empty after an error.
    std::vector<AccessibleReference> references;
};

/// Asks an object for its children, of which the first ones up to a number are taken.
[[nodiscard]] AccessibleChildren childrenOf(AccessibilityBus& bus, const AccessibleReference& parent, std::size_t most,
                                            Deadline deadline);

} // namespace quillon::x11
