#pragma once

#include "Platform/Geometry.h"
#include "Platform/ProcessInfo.h"
#include "Platform/Scheduler.h"

#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillon {

class AccessibilityElement;

/// The result code of an Accessibility call (AXError).
enum class AccessibilityError : int {
    success = 0,
    failure = -25200,              ///< kAXErrorFailure
    illegalArgument = -25201,      ///< kAXErrorIllegalArgument
    invalidUIElement = -25202,     ///< kAXErrorInvalidUIElement: it is gone
    cannotComplete = -25204,       ///< kAXErrorCannotComplete: no answer in time
    attributeUnsupported = -25205, ///< kAXErrorAttributeUnsupported
    apiDisabled = -25211,          ///< kAXErrorAPIDisabled: no permission
    noValue = -25212,              ///< kAXErrorNoValue
};

/// The value of an attribute; `monostate` stands for a value of a type that is not listed. A point is
/// kAXValueTypeCGPoint, a size kAXValueTypeCGSize; an array is one of elements only.
using AccessibilityValue =
    std::variant<std::monostate, bool, double, std::string, DisplayPoint, Size, std::shared_ptr<AccessibilityElement>,
                 std::vector<std::shared_ptr<AccessibilityElement>>>;

struct AccessibilityRead {
    AccessibilityError error = AccessibilityError::failure;
    /// Meaningful only on success.
    AccessibilityValue value;

    /// The value when the read succeeded and the value is a T, else nullptr.
    template <class T>
    [[nodiscard]] const T* get() const {
        return error == AccessibilityError::success ? std::get_if<T>(&value) : nullptr;
    }
};

struct AccessibilitySettable {
    AccessibilityError error = AccessibilityError::failure;
    /// False unless the question succeeded.
    bool isSettable = false;
};

/// An application or a part of its user interface (AXUIElement). Any thread; calls may wait for the application, for
/// as long as the messaging time-out says.
class AccessibilityElement {
public:
    virtual ~AccessibilityElement() = default;

    /// Reads an attribute by its name ("AXTitle", ...).
    [[nodiscard]] virtual AccessibilityRead copyAttributeValue(std::string_view attribute) const = 0;
    /// AXUIElementIsAttributeSettable.
    [[nodiscard]] virtual AccessibilitySettable isAttributeSettable(std::string_view attribute) const = 0;
    /// AXUIElementSetAttributeValue.
    virtual AccessibilityError setAttributeValue(std::string_view attribute, const AccessibilityValue& value) = 0;
    /// AXUIElementPerformAction ("AXRaise").
    virtual AccessibilityError performAction(std::string_view action) = 0;
    /// How long each call to this element waits at most (AXUIElementSetMessagingTimeout); some seconds before it was
    /// set.
    virtual void setMessagingTimeout(Seconds timeout) = 0;
};

/// The Accessibility interface. Any thread, except where a member says otherwise.
class Accessibility {
public:
    virtual ~Accessibility() = default;

    /// AXIsProcessTrusted.
    [[nodiscard]] virtual bool isProcessTrusted() const = 0;
    /// AXIsProcessTrustedWithOptions with kAXTrustedCheckOptionPrompt: the system asks the user when it has to. True
    /// when the process is trusted now. Main thread.
    virtual bool promptForTrust() = 0;
    /// Never null, even when no such process runs; reads from it then fail.
    [[nodiscard]] virtual std::shared_ptr<AccessibilityElement> applicationElement(ProcessID pid) const = 0;
};

} // namespace quillon
