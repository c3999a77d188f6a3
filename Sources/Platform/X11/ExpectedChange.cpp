#include "Platform/X11/ExpectedChange.h"

#include "Platform/X11/Region.h"

#include <algorithm>
#include <utility>

namespace quillon::x11 {

ExpectedChange::ExpectedChange(Connection& connection, Handler changedMore)
    : connection(connection), changedMore(std::move(changedMore)) {}

void ExpectedChange::learn(std::vector<PixelRect> newAreas, int width, int height) {
    // Twice as many after each confirmation: a source that stops changing all of the areas has cost at most as many
    // needless drawings as it had necessary ones.
    constexpr int most = 15;
    mostExpected = newAreas == areas ? std::min(2 * mostExpected + 1, most) : 0;
    expected = 0;
    areas = std::move(newAreas);
    isWhole = areas == std::vector{PixelRect{0, 0, width, height}};
    if (mostExpected == 1 && !isWhole) {
        prepare(width, height);
    }
}

const std::vector<PixelRect>* ExpectedChange::expect(xcb_xfixes_region_t changed) {
    if (expected >= mostExpected) {
        return nullptr;
    }
    ++expected;
    if (!isWhole) {
        // An empty region is no damage.
        xcb_xfixes_subtract_region(connection.xcb(), changed, expectedRegion.id(), rest.id());
        xcb_damage_add(connection.xcb(), blank.id(), rest.id());
    }
    return &areas;
}

void ExpectedChange::forget() {
    mostExpected = 0;
    areas.clear();
}

void ExpectedChange::prepare(int width, int height) {
    auto* const xcb = connection.xcb();
    if (blankWidth != width || blankHeight != height) {
        constexpr std::uint8_t smallestDepth = 1;
        blankWidth = width;
        blankHeight = height;
        damage.reset();
        blank = Pixmap(connection);
        xcb_create_pixmap(xcb, smallestDepth, blank.id(), connection.root(), static_cast<std::uint16_t>(width),
                          static_cast<std::uint16_t>(height));
        damage = Damage(connection);
        xcb_damage_create(xcb, damage.id(), blank.id(), XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
        damageEvents = connection.observeDamage(damage.id(), [this](const auto&) { tellWhatIsLeft(); });
    }
    rest = makeRegion(connection);
    expectedRegion = makeRegion(connection, areas);
}

void ExpectedChange::tellWhatIsLeft() {
    mostExpected = 0;
    xcb_damage_subtract(connection.xcb(), damage.id(), XCB_XFIXES_REGION_NONE, rest.id());
    changedMore(rest.id());
}

} // namespace quillon::x11
