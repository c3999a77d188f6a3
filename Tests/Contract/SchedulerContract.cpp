#include "ContractTest.h"

#include "Platform/Clock.h"

#include <atomic>
#include <regex>
#include <thread>
#include <vector>

namespace quillon::contract {
namespace {

using SchedulerContract = ContractTest;
using ClockContract = ContractTest;

TEST_F(SchedulerContract, MainTasksRunLaterAndInTheOrderOfTheirSubmission) {
    std::vector<int> order;
    auto& scheduler = desktop().scheduler();
    scheduler.mainAsync([&] {
        order.push_back(1);
        scheduler.mainAsync([&] { order.push_back(3); });
    });
    scheduler.mainAsync([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(eventually([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST_F(SchedulerContract, ADelayedTaskRunsOnceAndNotEarlier) {
    int runs = 0;
    const auto start = desktop().clock().now();
    WallTime ran;
    desktop().scheduler().mainAfter(Seconds(0.2), [&] {
        ++runs;
        ran = desktop().clock().now();
    });
    EXPECT_TRUE(eventually([&] { return runs == 1; }));
    EXPECT_GE(Seconds(ran - start), Seconds(0.19));
    EXPECT_TRUE(stays([&] { return runs == 1; }));
}

TEST_F(SchedulerContract, ARepeatingTimerTicksUntilItsTokenIsDestroyed) {
    int ticks = 0;
    auto token = desktop().scheduler().scheduleRepeatingTimer(Seconds(0.05), [&] { ++ticks; });
    EXPECT_EQ(ticks, 0);
    EXPECT_TRUE(eventually([&] { return ticks >= 3; }));
    token.reset();
    const int before = ticks;
    EXPECT_TRUE(stays([&] { return ticks == before; }));
}

TEST_F(SchedulerContract, ATimerMayEndItselfFromItsOwnTick) {
    int ticks = 0;
    RegistrationToken token;
    token = desktop().scheduler().scheduleRepeatingTimer(Seconds(0.02), [&] {
        ++ticks;
        token.reset();
    });
    EXPECT_TRUE(eventually([&] { return ticks == 1; }));
    EXPECT_TRUE(stays([&] { return ticks == 1; }));
}

TEST_F(SchedulerContract, ASerialQueueKeepsTheOrderAndNeverRunsATaskInsideTheCall) {
    const auto queue = desktop().scheduler().makeSerialQueue("contract");
    std::vector<int> order;
    std::atomic<bool> submitting = true;
    std::atomic<bool> ranInside = false;
    std::atomic<int> done = 0;
    const auto submitter = std::this_thread::get_id();
    for (int number = 0; number < 50; ++number) {
        queue->async([&, number] {
            ranInside = ranInside || (submitting && std::this_thread::get_id() == submitter);
            order.push_back(number);
            ++done;
        });
    }
    submitting = false;
    EXPECT_TRUE(eventually([&] { return done == 50; }));
    EXPECT_FALSE(ranInside);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST_F(SchedulerContract, ATaskOfAReleasedQueueStillRunsAndMayHopToTheMainThread) {
    const auto mainThread = std::this_thread::get_id();
    std::thread::id ran;
    auto queue = desktop().scheduler().makeSerialQueue("contract");
    queue->async([&] { desktop().scheduler().mainAsync([&] { ran = std::this_thread::get_id(); }); });
    queue.reset();
    EXPECT_TRUE(eventually([&] { return ran == mainThread; }));
}

TEST_F(ClockContract, ADateFormatterFillsItsPattern) {
    const auto formatter = desktop().clock().makeDateFormatter("yyyy-MM-dd HH:mm:ss.SSS");
    const auto text = formatter->string(desktop().clock().now());
    EXPECT_TRUE(std::regex_match(text, std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3})"))) << text;
}

TEST_F(ClockContract, AFormattedTimeKeepsItsMilliseconds) {
    const auto formatter = desktop().clock().makeDateFormatter("ss.SSS");
    // 7.045 s after a full minute, in every time zone.
    EXPECT_EQ(formatter->string(WallTime(std::chrono::milliseconds(600007045))), "07.045");
}

TEST_F(ClockContract, TheClockGoesOn) {
    const auto start = desktop().clock().now();
    pass(Seconds(0.05));
    EXPECT_GE(Seconds(desktop().clock().now() - start), Seconds(0.04));
}

} // namespace
} // namespace quillon::contract
