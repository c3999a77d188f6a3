#include "PellamKit/PellamMenuBarPill.h"

#include "PellamKit/PellamStatusItemVisibility.h"
#include "UnitTest.h"

namespace quillon {
namespace {

using simulated::ImagePicture;
using simulated::SimulatedImage;

class PellamMenuBarPillTest : public UnitTest {
protected:
    void enablePill() { desktop.userDefaults().store("menuBarPillEnabled", true); }
    void setGlyphSize(const Size& size) { desktop.images().setSymbolSizes({9, 9}, size); }
    std::shared_ptr<SimulatedImage> icon(const std::optional<Color>& tint = SystemColor::red) {
        return desktop.images().require(PellamMenuBarPill::icon("pin", 16, FontWeight::semibold, tint, "Quillon"),
                                        "the test");
    }
    ImagePicture draw(const SimulatedImage& image, std::optional<Appearance> appearance) {
        return desktop.images().draw(image, appearance);
    }
    /// The one shape of the picture, which has to be the pill over the whole image.
    static GrayColor pillColor(const ImagePicture& picture, const Size& size) {
        EXPECT_TRUE(picture.succeeded);
        EXPECT_TRUE(picture.shapes.strokes.empty());
        EXPECT_EQ(picture.shapes.rectangles.size(), 1U);
        const auto& pill = picture.shapes.rectangles.at(0);
        EXPECT_EQ(pill.rect, (WindowRect{{0, 0}, size}));
        EXPECT_EQ(pill.cornerRadius, size.height / 2);
        return pill.color;
    }
};

using PellamMenuBarPillEdgeCases = PellamMenuBarPillTest;
using PellamMenuBarPillDeathTest = PellamMenuBarPillTest;

TEST_F(PellamMenuBarPillEdgeCases, OnAFirstRunTheIconIsVisibleAndDrawnWithoutThePill) {
    EXPECT_TRUE(PellamStatusItemVisibility::isVisible());
    EXPECT_EQ(icon()->description(), "pin semibold 16 red");
}

TEST_F(PellamMenuBarPillEdgeCases, AGlyphOf10PointsGivesTheSmallestPillAndOneOf16GivesOneOf28) {
    enablePill();
    setGlyphSize({10, 14});
    EXPECT_EQ(icon()->size().width, 22);
    setGlyphSize({16, 14});
    EXPECT_EQ(icon()->size().width, 28);
}

TEST_F(PellamMenuBarPillEdgeCases, InABarOf24PointsAGlyph16PointsTallGivesAPillOf20) {
    enablePill();
    setGlyphSize({16, 16});
    EXPECT_EQ(icon()->size().height, 20);
}

TEST_F(PellamMenuBarPillEdgeCases, SwitchingTheAppearanceRecoloursAPillThatIsThere) {
    enablePill();
    setGlyphSize({16, 14});
    const auto image = icon(std::nullopt);
    desktop.journal().clear();
    const Size size{28, 18};

    const auto dark = draw(*image, Appearance::darkAqua);
    EXPECT_EQ(pillColor(dark, size).white, 0.85);
    EXPECT_EQ(pillColor(dark, size).alpha, 1);
    EXPECT_EQ(dark.symbols.at(0).look, "pin semibold 16 gray 0.1/1");

    const auto light = draw(*image, Appearance::aqua);
    EXPECT_EQ(pillColor(light, size).white, 0.2);
    EXPECT_EQ(pillColor(light, size).alpha, 0.85);
    EXPECT_EQ(light.symbols.at(0).look, "pin semibold 16 gray 1/1");

    EXPECT_EQ(desktop.journal().take({"images."}), Lines{});
}

TEST_F(PellamMenuBarPillEdgeCases, AStoredPillColorHasNoEffect) {
    enablePill();
    const auto before = draw(*icon(), Appearance::aqua);
    desktop.userDefaults().store("menuBarPillColor", "blue");
    const auto after = draw(*icon(), Appearance::aqua);
    EXPECT_EQ(after.shapes.rectangles.at(0).color.white, before.shapes.rectangles.at(0).color.white);
    EXPECT_EQ(after.shapes.rectangles.at(0).color.alpha, before.shapes.rectangles.at(0).color.alpha);
    EXPECT_EQ(after.symbols.at(0).look, before.symbols.at(0).look);
}

TEST_F(PellamMenuBarPillTest, ASymbolThatTheSystemDoesNotHaveGivesNoImage) {
    desktop.images().removeSymbol("pin");
    EXPECT_EQ(icon(), nullptr);
    enablePill();
    EXPECT_EQ(icon(), nullptr);
}

TEST_F(PellamMenuBarPillTest, WithATintThePlainIconIsNoTemplate) {
    const auto image = icon();
    EXPECT_FALSE(image->isTemplate());
    EXPECT_EQ(image->symbol()->description, "Quillon");
}

TEST_F(PellamMenuBarPillTest, WithoutATintTheMenuBarColoursThePlainIcon) {
    EXPECT_EQ(icon(std::nullopt)->description(), "pin semibold 16 template");
}

TEST_F(PellamMenuBarPillTest, ThePlainIconIsLeftOutWhenItCannotBeDrawnSo) {
    desktop.images().failConfigurations(
        [](const auto& configuration) { return configuration.paletteColor.has_value(); });
    EXPECT_EQ(icon(), nullptr);
    EXPECT_EQ(icon(std::nullopt)->description(), "pin semibold 16 template");
}

TEST_F(PellamMenuBarPillTest, SizeWeightAndDescriptionAreThoseAskedFor) {
    const auto image = desktop.images().require(
        PellamMenuBarPill::icon("pin.fill", 11.5, FontWeight::regular, GrayColor{0.5, 1}, std::nullopt), "the test");
    EXPECT_EQ(image->description(), "pin.fill regular 11.5 gray 0.5/1");
    EXPECT_EQ(image->symbol()->description, std::nullopt);
}

TEST_F(PellamMenuBarPillTest, TheSwitchIsReadWheneverAnIconIsMade) {
    EXPECT_NE(icon()->symbol(), nullptr);
    enablePill();
    EXPECT_NE(icon()->handler(), nullptr);
    desktop.userDefaults().store("menuBarPillEnabled", false);
    EXPECT_NE(icon()->symbol(), nullptr);
}

TEST_F(PellamMenuBarPillTest, ThePillIsMarkedAsNoTemplateWithAndWithoutATint) {
    enablePill();
    for (const auto& tint : {std::optional<Color>(SystemColor::red), std::optional<Color>()}) {
        EXPECT_FALSE(icon(tint)->isTemplate());
        EXPECT_EQ(desktop.journal().take({"image.setTemplate"}), Lines{"image.setTemplate false"});
    }
}

TEST_F(PellamMenuBarPillTest, InALowBarThePillStaysTwoPointsBelowItsHeight) {
    enablePill();
    setGlyphSize({16, 18});
    EXPECT_EQ(icon()->size().height, 22);
    desktop.statusBar().setThickness(22);
    EXPECT_EQ(icon()->size().height, 20);
    desktop.statusBar().setThickness(37);
    EXPECT_EQ(icon()->size().height, 22);
}

TEST_F(PellamMenuBarPillTest, TheGlyphLiesCentredAtItsOwnSize) {
    enablePill();
    setGlyphSize({9, 19});
    const auto image = icon();
    ASSERT_EQ(image->size(), (Size{22, 22}));
    const auto picture = draw(*image, Appearance::aqua);
    ASSERT_EQ(picture.symbols.size(), 1U);
    EXPECT_EQ(picture.symbols[0].look, "pin semibold 16 red");
    EXPECT_EQ(picture.symbols[0].rect, (WindowRect{{6.5, 1.5}, {9, 19}}));
}

TEST_F(PellamMenuBarPillTest, ATintColoursTheGlyphInEveryAppearance) {
    enablePill();
    const auto image = icon();
    for (const auto appearance :
         {std::optional(Appearance::aqua), std::optional(Appearance::darkAqua), std::optional<Appearance>()}) {
        EXPECT_EQ(draw(*image, appearance).symbols.at(0).look, "pin semibold 16 red");
    }
}

TEST_F(PellamMenuBarPillTest, AnAppearanceThatIsNeitherLightNorDarkCountsAsLight) {
    enablePill();
    const auto image = icon(std::nullopt);
    const auto picture = draw(*image, std::nullopt);
    EXPECT_EQ(pillColor(picture, image->size()).white, 0.2);
    EXPECT_EQ(pillColor(picture, image->size()).alpha, 0.85);
    EXPECT_EQ(picture.symbols.at(0).look, "pin semibold 16 gray 1/1");
}

TEST_F(PellamMenuBarPillTest, WithoutConfigurationsThePillShowsThePlainSymbol) {
    enablePill();
    desktop.images().setSymbolSizes({14, 12}, {16, 18});
    desktop.images().failConfigurations([](const auto&) { return true; });
    const auto image = icon();
    ASSERT_EQ(image->size(), (Size{26, 16}));
    const auto picture = draw(*image, Appearance::aqua);
    EXPECT_EQ(picture.symbols.at(0).look, "pin");
    EXPECT_EQ(picture.symbols.at(0).rect, (WindowRect{{6, 2}, {14, 12}}));
}

TEST_F(PellamMenuBarPillTest, ASymbolThatCannotBeColouredIsCentredAtItsPlainSize) {
    enablePill();
    desktop.images().setSymbolSizes({10, 10}, {16, 14});
    desktop.images().failConfigurations(
        [](const auto& configuration) { return configuration.paletteColor.has_value(); });
    const auto image = icon();
    ASSERT_EQ(image->size(), (Size{28, 18}));
    EXPECT_EQ(draw(*image, Appearance::aqua).symbols.at(0).rect, (WindowRect{{9, 4}, {10, 10}}));
}

// The simulated images

TEST_F(PellamMenuBarPillTest, ADrawnImageTakesNoSymbolConfiguration) {
    enablePill();
    EXPECT_EQ(icon()->withSymbolConfiguration({16, FontWeight::regular, std::nullopt}), nullptr);
}

TEST_F(PellamMenuBarPillDeathTest, ImagesThatCannotBe) {
    auto& images = desktop.images();
    const auto handler = [](auto&, const auto&) { return true; };
    EXPECT_DEATH(static_cast<void>(images.drawnImage({0, 5}, handler)), "Images::drawnImage of 0x5 points with");
    EXPECT_DEATH(static_cast<void>(images.drawnImage({5, 5}, nullptr)), "Images::drawnImage of 5x5 points without");
    EXPECT_DEATH(static_cast<void>(icon()->withSymbolConfiguration({})), "with a size of 0 points");
    EXPECT_DEATH(draw(*icon(), Appearance::aqua), "drawing an image that no handler draws");
}

} // namespace
} // namespace quillon
