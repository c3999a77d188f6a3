#include "ContractTest.h"

#include "Platform/Accessibility.h"
#include "Platform/Scheduler.h"
#include "Platform/WindowServer.h"
#include "Platform/Workspace.h"

#include <algorithm>
#include <atomic>

namespace quillon::contract {
namespace {

using Element = std::shared_ptr<AccessibilityElement>;
using Elements = std::vector<Element>;

constexpr DisplayRect here{{100, 120}, {400, 300}};
constexpr DisplayRect there{{350, 200}, {500, 350}};

class AccessibilityContract : public ContractTest {
protected:
    /// Does it on another thread, as its users do with what may wait for an application.
    void elsewhere(const std::function<void()>& action) {
        const auto queue = desktop().scheduler().makeSerialQueue("contract.accessibility");
        std::atomic<bool> isDone = false;
        queue->async([&] {
            action();
            isDone = true;
        });
        ASSERT_TRUE(eventually([&] { return isDone.load(); }));
    }
    Elements windowsOf(ProcessID pid) {
        const auto read = desktop().accessibility().applicationElement(pid)->copyAttributeValue("AXWindows");
        const auto* elements = read.get<Elements>();
        return elements != nullptr ? *elements : Elements();
    }
    static std::string textOf(const Element& element, std::string_view attribute) {
        const auto read = element->copyAttributeValue(attribute);
        const auto* text = read.get<std::string>();
        return text != nullptr ? *text : std::string();
    }
    static std::optional<double> numberOf(const Element& element, std::string_view attribute) {
        const auto read = element->copyAttributeValue(attribute);
        const auto* number = read.get<double>();
        return number != nullptr ? std::optional(*number) : std::nullopt;
    }
    static std::optional<DisplayRect> frameOf(const Element& element) {
        const auto position = element->copyAttributeValue("AXPosition");
        const auto size = element->copyAttributeValue("AXSize");
        const auto* origin = position.get<DisplayPoint>();
        const auto* extent = size.get<Size>();
        return origin != nullptr && extent != nullptr ? std::optional(DisplayRect{*origin, *extent}) : std::nullopt;
    }
    std::vector<std::string> titlesOf(ProcessID pid) {
        std::vector<std::string> titles;
        for (const auto& window : windowsOf(pid)) {
            titles.push_back(textOf(window, "AXTitle"));
        }
        return titles;
    }
    std::optional<WindowID> frontWindow() {
        const auto list = desktop().windowServer().copyWindowInfo(
            windowListOnScreenOnly | windowListExcludeDesktopElements, nullWindowID);
        return list && !list->empty() ? list->front().number : std::nullopt;
    }

    /// The first element below with a vertical scroll bar that can be moved; null for none.
    static Element scrollAreaBelow(const Element& element, int depth = 0) {
        constexpr int deepest = 11;
        if (depth > deepest) {
            return nullptr;
        }
        if (textOf(element, "AXRole") == "AXScrollArea" && frameOf(element)) {
            if (const auto bar = barOf(element); bar && bar->isAttributeSettable("AXValue").isSettable) {
                return element;
            }
        }
        const auto children = element->copyAttributeValue("AXChildren");
        if (const auto* elements = children.get<Elements>()) {
            for (const auto& child : *elements) {
                if (const auto found = scrollAreaBelow(child, depth + 1)) {
                    return found;
                }
            }
        }
        return nullptr;
    }
    static Element barOf(const Element& area) {
        const auto read = area->copyAttributeValue("AXVerticalScrollBar");
        const auto* bar = read.get<Element>();
        return bar != nullptr ? *bar : nullptr;
    }
    /// The scroll area of the one window of the process, as soon as the program shows it.
    Element awaitScrollArea(ProcessID pid) {
        Element area;
        eventually([&] {
            elsewhere([&] {
                const auto windows = windowsOf(pid);
                area = windows.empty() ? nullptr : scrollAreaBelow(windows.front());
            });
            return area != nullptr;
        });
        return area;
    }
};

/// With a program that has a scroll bar.
class ScrollAreaContract : public AccessibilityContract {
protected:
    void SetUp() override {
        window = world->openScrollingWindow();
        if (!window) {
            GTEST_SKIP() << "there is no program with a scroll bar here";
        }
        area = awaitScrollArea(window->pid);
        ASSERT_NE(area, nullptr);
    }

    std::optional<OtherWindow> window;
    Element area;
};

TEST_F(AccessibilityContract, TheFocusedWindowTellsItsTitleAndFrame) {
    const auto window = world->openWindow("Primo titolo", here);
    world->activate(window);
    const auto application = desktop().accessibility().applicationElement(window.pid);
    ASSERT_TRUE(eventually(
        [&] { return application->copyAttributeValue("AXFocusedWindow").error == AccessibilityError::success; }));
    const auto focused = application->copyAttributeValue("AXFocusedWindow");
    const auto* element = focused.get<std::shared_ptr<AccessibilityElement>>();
    ASSERT_NE(element, nullptr);
    const auto title = (*element)->copyAttributeValue("AXTitle");
    const auto position = (*element)->copyAttributeValue("AXPosition");
    const auto size = (*element)->copyAttributeValue("AXSize");
    ASSERT_NE(title.get<std::string>(), nullptr);
    ASSERT_NE(position.get<DisplayPoint>(), nullptr);
    ASSERT_NE(size.get<Size>(), nullptr);
    EXPECT_EQ(*title.get<std::string>(), "Primo titolo");
    EXPECT_EQ(*position.get<DisplayPoint>(), here.origin);
    EXPECT_EQ(*size.get<Size>(), here.size);
}

TEST_F(AccessibilityContract, AnUnknownAttributeIsAnError) {
    const auto window = world->openWindow("Primo", here);
    world->activate(window);
    const auto application = desktop().accessibility().applicationElement(window.pid);
    EXPECT_NE(application->copyAttributeValue("AXContractUnknown").error, AccessibilityError::success);
}

TEST_F(AccessibilityContract, AnApplicationThatHasEndedAnswersWithAnError) {
    const auto window = world->openWindow("Primo", here);
    world->activate(window);
    world->kill(window);
    const auto application = desktop().accessibility().applicationElement(window.pid);
    EXPECT_TRUE(eventually(
        [&] { return application->copyAttributeValue("AXFocusedWindow").error != AccessibilityError::success; }));
}

TEST_F(AccessibilityContract, AnApplicationListsItsWindowsFrontToBack) {
    const auto first = world->openWindow("Primo", here);
    const auto second = world->openSecondWindow(first, "Secondo", there);
    world->openWindow("Di un altro", there);
    world->activate(first);
    EXPECT_TRUE(eventually([&] { return titlesOf(first.pid) == std::vector<std::string>{"Primo", "Secondo"}; }));
    world->activate(second);
    EXPECT_TRUE(eventually([&] { return titlesOf(first.pid) == std::vector<std::string>{"Secondo", "Primo"}; }));
    for (const auto& window : windowsOf(first.pid)) {
        EXPECT_EQ(textOf(window, "AXRole"), "AXWindow");
    }
}

TEST_F(AccessibilityContract, ARaisedWindowComesToTheFrontOfItsApplicationWithoutBecomingActive) {
    const auto raised = world->openWindow("Primo", here);
    world->openSecondWindow(raised, "Secondo", here);
    const auto active = world->openWindow("Terzo", there);
    world->activate(active);
    ASSERT_TRUE(eventually([&] { return titlesOf(raised.pid) == std::vector<std::string>{"Secondo", "Primo"}; }));
    EXPECT_EQ(windowsOf(raised.pid).at(1)->performAction("AXRaise"), AccessibilityError::success);
    EXPECT_TRUE(eventually([&] { return titlesOf(raised.pid) == std::vector<std::string>{"Primo", "Secondo"}; }));
    EXPECT_TRUE(stays([&] {
        const auto application = desktop().workspace().frontmostApplication();
        return application && application->processIdentifier == active.pid;
    }));
}

TEST_F(AccessibilityContract, AnotherThreadSeesTheSameWindows) {
    const auto window = world->openWindow("Primo titolo", here);
    world->activate(window);
    ASSERT_TRUE(eventually([&] {
        const auto application = desktop().workspace().frontmostApplication();
        return application && application->processIdentifier == window.pid;
    }));
    elsewhere([&] {
        const auto windows = windowsOf(window.pid);
        ASSERT_FALSE(windows.empty());
        EXPECT_EQ(textOf(windows.front(), "AXTitle"), "Primo titolo");
        EXPECT_EQ(frameOf(windows.front()), here);
        EXPECT_EQ(frontWindow(), window.windowID);
        EXPECT_EQ(desktop().workspace().frontmostApplication().value().processIdentifier, window.pid);
    });
}

TEST_F(AccessibilityContract, TwoThreadsReadAtOnce) {
    const auto window = world->openWindow("Primo titolo", here);
    const auto isListed = [&] {
        const auto titles = titlesOf(window.pid);
        return std::find(titles.begin(), titles.end(), "Primo titolo") != titles.end();
    };
    ASSERT_TRUE(eventually(isListed));
    const auto queue = desktop().scheduler().makeSerialQueue("contract.accessibility");
    constexpr int rounds = 50;
    std::atomic<int> good = 0;
    for (int round = 0; round < rounds; ++round) {
        queue->async([&] { good += isListed() ? 1 : 0; });
    }
    // The main thread reads at every look.
    EXPECT_TRUE(eventually([&] {
        EXPECT_TRUE(isListed());
        return good == rounds;
    }));
}

TEST_F(ScrollAreaContract, AScrollBarGoesFromNoughtToOneAndCanBeSet) {
    elsewhere([&] {
        const auto frame = frameOf(area).value();
        const auto outer = frameOf(windowsOf(window->pid).front()).value();
        EXPECT_TRUE(frame.minX() >= outer.minX() && frame.minY() >= outer.minY() && frame.maxX() <= outer.maxX() &&
                    frame.maxY() <= outer.maxY());
        const auto bar = barOf(area);
        ASSERT_NE(bar, nullptr);
        EXPECT_EQ(textOf(bar, "AXRole"), "AXScrollBar");
        EXPECT_EQ(numberOf(bar, "AXMinValue"), 0);
        EXPECT_EQ(numberOf(bar, "AXMaxValue"), 1);
        EXPECT_EQ(numberOf(bar, "AXValue"), 0);
        const auto settable = bar->isAttributeSettable("AXValue");
        EXPECT_EQ(settable.error, AccessibilityError::success);
        EXPECT_TRUE(settable.isSettable);

        EXPECT_EQ(bar->setAttributeValue("AXValue", 0.5), AccessibilityError::success);
        EXPECT_NEAR(numberOf(bar, "AXValue").value_or(-1), 0.5, 0.01);
        EXPECT_EQ(bar->setAttributeValue("AXValue", 1.0), AccessibilityError::success);
        EXPECT_NEAR(numberOf(bar, "AXValue").value_or(-1), 1, 0.001);
        EXPECT_EQ(bar->setAttributeValue("AXValue", 0.0), AccessibilityError::success);
        EXPECT_EQ(numberOf(bar, "AXValue"), 0);
    });
}

TEST_F(ScrollAreaContract, WhatCannotBeSetSaysSo) {
    elsewhere([&] {
        EXPECT_FALSE(area->isAttributeSettable("AXRole").isSettable);
        EXPECT_NE(area->setAttributeValue("AXRole", std::string("AXButton")), AccessibilityError::success);
        EXPECT_EQ(textOf(area, "AXRole"), "AXScrollArea");
        EXPECT_NE(area->performAction("AXContractUnknown"), AccessibilityError::success);
        EXPECT_NE(area->copyAttributeValue("AXContractUnknown").error, AccessibilityError::success);
    });
}

TEST_F(ScrollAreaContract, ElementsOfAProgramThatHasEndedAreGone) {
    Element bar;
    elsewhere([&] { bar = barOf(area); });
    ASSERT_NE(bar, nullptr);
    const auto front = windowsOf(window->pid).at(0);
    world->kill(*window);
    const auto isGone = [](const AccessibilityRead& read) {
        return read.error == AccessibilityError::invalidUIElement;
    };
    EXPECT_TRUE(eventually([&] { return isGone(front->copyAttributeValue("AXTitle")); }));
    elsewhere([&] {
        EXPECT_TRUE(isGone(bar->copyAttributeValue("AXValue")));
        EXPECT_TRUE(isGone(area->copyAttributeValue("AXPosition")));
        EXPECT_EQ(bar->setAttributeValue("AXValue", 0.5), AccessibilityError::invalidUIElement);
    });
}

} // namespace
} // namespace quillon::contract
