#include "Platform/Platform.h"

#include "Platform/OneTimeValue.h"
#include "Simulated/Desktop.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

using simulated::Desktop;

TEST(PlatformDeathTest, WithoutAPlatformTheProcessStops) {
    EXPECT_DEATH(platform(), "no platform is installed");
}

TEST(PlatformTest, AScopeInstallsItsPlatformAndPutsTheEarlierOneBack) {
    Desktop outer;
    Desktop inner;
    const PlatformScope outerScope(outer);
    EXPECT_EQ(&platform(), &outer);
    {
        const PlatformScope innerScope(inner);
        EXPECT_EQ(&platform(), &inner);
    }
    EXPECT_EQ(&platform(), &outer);
}

TEST(PlatformTest, AOneTimeValueIsMadeOnceForEachPlatform) {
    static OneTimeValue<int> value;
    int made = 0;
    const auto get = [&] { return value.get([&] { return ++made; }); };
    Desktop desktop;
    {
        const PlatformScope scope(desktop);
        EXPECT_EQ(get(), 1);
        EXPECT_EQ(get(), 1);
    }
    const PlatformScope scope(desktop);
    EXPECT_EQ(get(), 2);
}

} // namespace
} // namespace quillon
