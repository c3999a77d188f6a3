// What a long life must not leave behind.

#include "EndToEndTest.h"

namespace quillon::e2e {

namespace {

/// The sanitizer keeps freed memory from being used again, and looks for leaks at the program's end itself.
#ifdef __SANITIZE_ADDRESS__
constexpr bool underAddressSanitizer = true;
#else
constexpr bool underAddressSanitizer = false;
#endif

class Endurance : public EndToEndTest {
protected:
    struct Holdings {
        ServerResources server;
        std::size_t descriptors = 0;

        bool operator==(const Holdings&) const = default;
    };

    [[nodiscard]] Holdings holdings() const { return {client.resourcesOf(quillon.pid()), quillon.openDescriptors()}; }

    /// Once nothing is being taken down any more.
    [[nodiscard]] Holdings settledHoldings() const {
        Holdings now;
        do {
            now = holdings();
        } while (!client.holdsFor([&] { return holdings() == now; }, Milliseconds(500)));
        return now;
    }

    static std::string describe(const Holdings& holdings) {
        std::string text = std::to_string(holdings.descriptors) + " descriptors, " +
                           std::to_string(holdings.server.pixmapBytes) + " bytes of pixmaps";
        for (const auto& [type, count] : holdings.server.counts) {
            text += ", " + std::to_string(count) + " " + type;
        }
        return text;
    }

    /// Pins every window, waits for all panels, unpins them all and waits until they are gone.
    void pinAndUnpin(const std::vector<Window>& windows) {
        for (const auto window : windows) {
            ASSERT_EQ(quillon.pin(window).status, 0);
        }
        ASSERT_TRUE(client.waitUntil([&] { return panels().size() == windows.size(); }));
        ASSERT_EQ(quillon.command({"unpin", "all"}).status, 0);
        ASSERT_TRUE(client.waitUntil([&] { return panels().empty(); }));
    }
};

TEST_F(Endurance, AThousandPinsLeakNothing) {
    constexpr int rounds = 40;
    const auto source = startSample({"--windows", "25", "--place", "60,60,300,200"});
    const auto cover = coverEverything();
    quillon.start();
    pinAndUnpin(source.windows);
    pinAndUnpin(source.windows);
    const auto before = settledHoldings();
    const auto memoryBefore = quillon.residentKilobytes();
    for (int round = 0; round < rounds; ++round) {
        ASSERT_NO_FATAL_FAILURE(pinAndUnpin(source.windows));
    }
    EXPECT_TRUE(client.waitUntil([&] { return holdings() == before; }))
        << "before: " << describe(before) << "\nafter: " << describe(holdings());
    if (!underAddressSanitizer) {
        // A leak of one kilobyte a pin would show.
        EXPECT_LT(quillon.residentKilobytes(), memoryBefore + 1000);
    }
    EXPECT_EQ(quillon.stop(), 0);
}

TEST_F(Endurance, WindowsThatCloseWhilePinnedLeakNothing) {
    const auto cover = coverEverything();
    quillon.start();
    const auto pinAndClose = [&] {
        const auto source = startSample({"--windows", "10", "--place", "60,60,300,200"});
        activate(cover.window());
        for (const auto window : source.windows) {
            ASSERT_EQ(quillon.pin(window).status, 0);
        }
        ASSERT_TRUE(client.waitUntil([&] { return panels().size() == source.windows.size(); }));
        source.program->send(SIGKILL);
        ASSERT_TRUE(client.waitUntil([&] { return panels().empty() && quillon.pinned().empty(); }));
    };
    ASSERT_NO_FATAL_FAILURE(pinAndClose());
    const auto before = settledHoldings();
    for (int round = 0; round < 4; ++round) {
        ASSERT_NO_FATAL_FAILURE(pinAndClose());
    }
    EXPECT_TRUE(client.waitUntil([&] { return holdings() == before; }))
        << "before: " << describe(before) << "\nafter: " << describe(holdings());
}

} // namespace

} // namespace quillon::e2e
