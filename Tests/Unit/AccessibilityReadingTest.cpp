#include "AccessibilityReading.h"

#include "UnitTest.h"

namespace quillon {
namespace {

class AccessibilityReadingTest : public UnitTest {
protected:
    ProcessID app = desktop.launch("Note");
    WindowID window = desktop.openWindow(app, "Spesa", {{100, 50}, {800, 600}});
    simulated::SimulatedElement& element = *desktop.accessibility().window(window);
};

TEST_F(AccessibilityReadingTest, ValuesOfTheRightTypeAreRead) {
    element.setAttribute("AXValue", 0.5);
    element.setAttribute("AXParent", desktop.accessibility().applicationElement(app));
    EXPECT_EQ(copyString(element, "AXTitle"), "Spesa");
    EXPECT_EQ(copyDouble(element, "AXValue"), 0.5);
    EXPECT_EQ(copyElement(element, "AXParent"), desktop.accessibility().applicationElement(app));
    EXPECT_EQ(frameOf(element), (DisplayRect{{100, 50}, {800, 600}}));
}

TEST_F(AccessibilityReadingTest, ErrorsAndOtherTypesCountAsAbsent) {
    EXPECT_EQ(copyString(element, "AXPosition"), std::nullopt);
    EXPECT_EQ(copyDouble(element, "AXTitle"), std::nullopt);
    EXPECT_EQ(copyElement(element, "AXTitle"), nullptr);
    element.setAttribute("AXTitle", std::monostate());
    EXPECT_EQ(copyString(element, "AXTitle"), std::nullopt);
    for (const auto* attribute : {"AXString", "AXDouble", "AXElement"}) {
        element.failAttribute(attribute, AccessibilityError::cannotComplete);
    }
    EXPECT_EQ(copyString(element, "AXString"), std::nullopt);
    EXPECT_EQ(copyDouble(element, "AXDouble"), std::nullopt);
    EXPECT_EQ(copyElement(element, "AXElement"), nullptr);
}

TEST_F(AccessibilityReadingTest, AFrameNeedsAPositionAndASize) {
    element.setAttribute("AXSize", DisplayPoint{800, 600});
    EXPECT_EQ(frameOf(element), std::nullopt);
    element.failAttribute("AXSize", AccessibilityError::noValue);
    EXPECT_EQ(frameOf(element), std::nullopt);
    element.setAttribute("AXPosition", Size{100, 50});
    EXPECT_EQ(frameOf(element), std::nullopt);
    EXPECT_EQ(element.reads(), (Lines{"AXPosition", "AXSize", "AXPosition", "AXSize", "AXPosition"}))
        << "without a position the size is not asked for";
}

TEST_F(AccessibilityReadingTest, ErrorsAreDescribedWithTheirCodes) {
    EXPECT_EQ(describe(AccessibilityError::success), "AXError(rawValue: 0)");
    EXPECT_EQ(describe(AccessibilityError::cannotComplete), "AXError(rawValue: -25204)");
}

} // namespace
} // namespace quillon
