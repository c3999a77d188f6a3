#include "ContractTest.h"

#include "Platform/Bundle.h"
#include "Platform/Images.h"
#include "Platform/StatusBar.h"

#include <vector>

namespace quillon::contract {
namespace {

using BundleContract = ContractTest;

class ImagesContract : public ContractTest {
protected:
    std::shared_ptr<Image> symbol(std::string_view name) {
        return desktop().images().systemSymbol(name, "Descrizione");
    }
};

/// A menu of two items and a line between them.
class StatusItemContract : public ContractTest {
protected:
    struct Delegate final : MenuDelegate {
        void menuNeedsUpdate(Menu& menu) override {
            ++updates;
            menu.items = {item("Primo & unico"), MenuItem::separator(), item("Secondo")};
        }
        MenuItem item(const std::string& title) {
            MenuItem made;
            made.title = title;
            made.action = MenuAction([this](const MenuItem& sender) { chosen.push_back(sender.title); });
            return made;
        }

        int updates = 0;
        std::vector<std::string> chosen;
    };

    [[nodiscard]] std::shared_ptr<Menu> makeMenu() const {
        auto menu = std::make_shared<Menu>();
        menu->delegate = delegate;
        return menu;
    }
    [[nodiscard]] std::unique_ptr<StatusItem> makeItem() {
        auto item = desktop().statusBar().makeStatusItem();
        item->setAutosaveName("ContractItem");
        if (auto* button = item->button()) {
            button->setImage(desktop().images().systemSymbol("pin", std::nullopt));
            button->setTitle("");
            button->setToolTip("Suggerimento");
        }
        item->setMenu(makeMenu());
        return item;
    }

    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>();
};

TEST_F(BundleContract, KnowsTheProgramsNameAndVersion) {
    auto& bundle = desktop().bundle();
    EXPECT_EQ(bundle.textForInfoDictionaryKey("CFBundleName"), "Quillon");
    const auto version = bundle.textForInfoDictionaryKey("CFBundleShortVersionString");
    ASSERT_TRUE(version);
    EXPECT_NE(version->find('.'), std::string::npos) << *version;
}

TEST_F(BundleContract, HasNoTextForUnknownKeys) {
    auto& bundle = desktop().bundle();
    EXPECT_EQ(bundle.textForInfoDictionaryKey("ContractUnknown"), std::nullopt);
    EXPECT_EQ(bundle.localizedString("contract.unknown", "Localizable"), std::nullopt);
    EXPECT_EQ(bundle.localizedString("contract.unknown", "ContractUnknown"), std::nullopt);
}

TEST_F(ImagesContract, HasTheSymbolsOfTheStatusItem) {
    EXPECT_NE(symbol("pin"), nullptr);
    EXPECT_NE(symbol("pin.fill"), nullptr);
    EXPECT_EQ(symbol("contract.unknown"), nullptr);
}

TEST_F(ImagesContract, ASymbolHasASizeBesideTextOfEachSize) {
    const auto small = symbol("pin")->withSymbolConfiguration({16, FontWeight::semibold, std::nullopt});
    const auto large = symbol("pin")->withSymbolConfiguration({32, FontWeight::semibold, Color(SystemColor::red)});
    ASSERT_TRUE(small && large);
    EXPECT_GT(small->size().width, 8);
    EXPECT_LT(small->size().height, 32);
    EXPECT_GE(large->size().width, small->size().width);
    EXPECT_GE(large->size().height, small->size().height);
}

TEST_F(ImagesContract, ADrawnImageHasItsSizeAndIsNoSymbol) {
    const auto image = desktop().images().drawnImage({28, 20}, [](ImageDrawing&, const WindowRect&) { return true; });
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->size(), (Size{28, 20}));
    EXPECT_EQ(image->withSymbolConfiguration({16, FontWeight::regular, std::nullopt}), nullptr);
}

TEST_F(StatusItemContract, TheBarHasAHeight) {
    EXPECT_GT(desktop().statusBar().thickness(), 0);
}

TEST_F(StatusItemContract, TheMenuIsAskedForWheneverItOpens) {
    const auto item = makeItem();
    EXPECT_EQ(delegate->updates, 0);
    for (int opening = 1; opening <= 3; ++opening) {
        if (!world->openStatusMenu(*item)) {
            GTEST_SKIP() << "a program cannot click on a status item here";
        }
        EXPECT_EQ(delegate->updates, opening);
        world->dismissMenu();
    }
    EXPECT_TRUE(delegate->chosen.empty());
}

TEST_F(StatusItemContract, AChosenItemDoesItsAction) {
    const auto item = makeItem();
    if (!world->openStatusMenu(*item)) {
        GTEST_SKIP() << "a program cannot click on a status item here";
    }
    world->chooseMenuItem("Secondo");
    EXPECT_TRUE(eventually([&] { return !delegate->chosen.empty(); }));
    ASSERT_TRUE(world->openStatusMenu(*item));
    world->chooseMenuItem("Primo & unico");
    EXPECT_TRUE(eventually([&] { return delegate->chosen.size() == 2; }));
    EXPECT_EQ(delegate->chosen, (std::vector<std::string>{"Secondo", "Primo & unico"}));
}

TEST_F(StatusItemContract, ItCanBeRemovedAndMadeAnew) {
    auto item = makeItem();
    if (!world->openStatusMenu(*item)) {
        GTEST_SKIP() << "a program cannot click on a status item here";
    }
    world->dismissMenu();
    item.reset();
    item = makeItem();
    ASSERT_TRUE(world->openStatusMenu(*item));
    EXPECT_EQ(delegate->updates, 2);
    world->dismissMenu();
}

TEST_F(StatusItemContract, ItMayHaveNoImage) {
    const auto item = makeItem();
    if (auto* button = item->button()) {
        button->setImage(nullptr);
    }
    if (!world->openStatusMenu(*item)) {
        GTEST_SKIP() << "a program cannot click on a status item here";
    }
    world->dismissMenu();
    EXPECT_EQ(delegate->updates, 1);
}

} // namespace
} // namespace quillon::contract
