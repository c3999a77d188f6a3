// How symbols look, and where the texts of other languages come from: what only X11 does by itself.

#include "Platform/Platform.h"
#include "Platform/X11/DesktopPorts.h"
#include "Platform/X11/Images.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace quillon::x11 {
namespace {

QImage pin(const std::string& name, int side, FontWeight weight = FontWeight::semibold,
           Appearance appearance = Appearance::aqua) {
    const auto images = makeImages();
    const auto image =
        images->systemSymbol(name, std::nullopt)->withSymbolConfiguration({16, weight, Color(SystemColor::red)});
    image->setTemplate(false);
    return render(*image, QSize(side, side), appearance);
}

/// The part of the picture that is not transparent, from 0 to 1.
double coverage(const QImage& picture) {
    double sum = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            sum += picture.pixelColor(x, y).alphaF();
        }
    }
    return sum / (picture.width() * picture.height());
}

class X11Symbols : public testing::TestWithParam<int> {};

TEST_P(X11Symbols, FillTheirPlaceAtEverySize) {
    const auto outline = pin("pin", GetParam());
    const auto filled = pin("pin.fill", GetParam());
    EXPECT_GT(coverage(outline), 0.08);
    EXPECT_LT(coverage(outline), 0.25);
    EXPECT_GT(coverage(filled), coverage(outline) + 0.05);
    EXPECT_LT(coverage(filled), 0.45);
    EXPECT_GT(coverage(outline), coverage(pin("pin", GetParam(), FontWeight::regular)));
    // The needle's end is near the bottom, the head near the top; nothing is cut off at the sides.
    const int side = GetParam();
    EXPECT_GT(coverage(filled.copy(0, 0, side, side / 4)), 0.05);
    EXPECT_GT(coverage(filled.copy(0, side * 3 / 4, side, side / 4)), 0.01);
    EXPECT_EQ(coverage(filled.copy(0, 0, 1, side)), 0);
    EXPECT_EQ(coverage(filled.copy(side - 1, 0, 1, side)), 0);
}

INSTANTIATE_TEST_SUITE_P(Sizes, X11Symbols, testing::Values(16, 22, 24, 32, 48, 64));

TEST(X11Images, ASymbolGrowsWithTheTextThatItGoesWith) {
    const auto symbol = makeImages()->systemSymbol("pin", std::nullopt);
    const auto sizeAt = [&](double pointSize) {
        return symbol->withSymbolConfiguration({pointSize, FontWeight::semibold, std::nullopt})->size();
    };
    EXPECT_EQ(sizeAt(16), (Size{12, 18}));
    EXPECT_EQ(sizeAt(32), (Size{24, 36}));
}

TEST(X11Images, RedFollowsTheAppearance) {
    const auto colour = [](Appearance appearance) {
        return pin("pin.fill", 64, FontWeight::semibold, appearance).pixelColor(32, 16);
    };
    EXPECT_EQ(colour(Appearance::aqua), QColor(255, 59, 48));
    EXPECT_EQ(colour(Appearance::darkAqua), QColor(255, 69, 58));
}

TEST(X11Images, ATemplateTakesTheColourOfItsPlace) {
    const auto images = makeImages();
    const auto image = images->systemSymbol("pin.fill", std::nullopt);
    EXPECT_EQ(render(*image, QSize(64, 64), Appearance::aqua).pixelColor(32, 16), QColor(Qt::black));
    EXPECT_EQ(render(*image, QSize(64, 64), Appearance::darkAqua).pixelColor(32, 16), QColor(Qt::white));
}

TEST(X11Images, AHandlerDrawsAnewForEachPlace) {
    const auto images = makeImages();
    const auto image = images->drawnImage({20, 10}, [](ImageDrawing& drawing, const WindowRect& bounds) {
        EXPECT_EQ(bounds, (WindowRect{{0, 0}, {20, 10}}));
        const bool isDark = drawing.bestMatchAppearance() == Appearance::darkAqua;
        // The lower left quarter.
        drawing.fillRoundedRectangle({{0, 0}, {10, 5}}, 0, {isDark ? 1.0 : 0.0, 1});
        return true;
    });
    const auto light = render(*image, QSize(40, 20), Appearance::aqua);
    EXPECT_EQ(light.pixelColor(10, 15), QColor(Qt::black));
    EXPECT_EQ(light.pixelColor(10, 5).alpha(), 0);
    EXPECT_EQ(light.pixelColor(30, 15).alpha(), 0);
    EXPECT_EQ(render(*image, QSize(40, 20), Appearance::darkAqua).pixelColor(10, 15), QColor(Qt::white));
}

TEST(X11Images, AnImpossibleSizeOfTextMakesNoImage) {
    const auto image = makeImages()->systemSymbol("pin", std::nullopt);
    EXPECT_EQ(image->withSymbolConfiguration({0, FontWeight::regular, std::nullopt}), nullptr);
    EXPECT_EQ(image->withSymbolConfiguration({-1, FontWeight::regular, std::nullopt}), nullptr);
}

class X11Texts : public testing::Test {
protected:
    X11Texts() {
        std::filesystem::create_directories(own / "quillon" / "it");
        std::filesystem::create_directories(shared / "quillon" / "it_IT");
        setenv("XDG_DATA_HOME", own.c_str(), 1);
        setenv("XDG_DATA_DIRS", ("relative:" + shared.string()).c_str(), 1);
        setenv("LC_ALL", "it_IT.UTF-8", 1);
    }
    ~X11Texts() override {
        for (const auto* variable : {"XDG_DATA_HOME", "XDG_DATA_DIRS", "LC_ALL"}) {
            unsetenv(variable);
        }
        std::filesystem::remove_all(directory);
    }

    static void write(const std::filesystem::path& path, const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
    }

    const std::filesystem::path directory =
        std::filesystem::temp_directory_path() / ("quillon-texts-" + std::to_string(getpid()));
    const std::filesystem::path own = directory / "own";
    const std::filesystem::path shared = directory / "shared";
};

TEST_F(X11Texts, AreReadOnceFromTheUsersLanguage) {
    const auto path = shared / "quillon" / "it_IT" / "Tavola.json";
    write(path, R"({"uno": "primo", "due": 2, "tre": null})");
    const auto bundle = makeBundle();
    EXPECT_EQ(bundle->localizedString("uno", "Tavola"), "primo");
    EXPECT_EQ(bundle->localizedString("due", "Tavola"), std::nullopt);
    EXPECT_EQ(bundle->localizedString("tre", "Tavola"), std::nullopt);
    write(path, R"({"uno": "altro"})");
    EXPECT_EQ(bundle->localizedString("uno", "Tavola"), "primo");
}

TEST_F(X11Texts, TheUsersOwnComeFirst) {
    write(shared / "quillon" / "it_IT" / "Tavola.json", R"({"uno": "di tutti"})");
    write(own / "quillon" / "it" / "Tavola.json", R"({"uno": "mio"})");
    EXPECT_EQ(makeBundle()->localizedString("uno", "Tavola"), "mio");
}

TEST_F(X11Texts, ADamagedFileIsReportedOnceAndLeftAside) {
    for (const std::string content : {"{", "[]", "", "\xff\xfe"}) {
        write(own / "quillon" / "it" / "Tavola.json", content);
        const auto bundle = makeBundle();
        testing::internal::CaptureStderr();
        EXPECT_EQ(bundle->localizedString("uno", "Tavola"), std::nullopt);
        EXPECT_EQ(bundle->localizedString("due", "Tavola"), std::nullopt);
        const auto errors = testing::internal::GetCapturedStderr();
        EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;
        EXPECT_NE(errors.find("Tavola.json"), std::string::npos) << errors;
    }
}

TEST_F(X11Texts, AMissingFileIsNothingToTell) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(makeBundle()->localizedString("uno", "Tavola"), std::nullopt);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace quillon::x11
