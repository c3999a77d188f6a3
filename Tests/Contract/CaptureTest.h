#pragma once

#include "ContractTest.h"

#include "Platform/ScreenCapture.h"

#include <algorithm>
#include <mutex>

namespace quillon::contract {

/// What a completion said; it may come on any thread.
template <class Result>
class Answer {
public:
    void operator()(const Result& given) {
        const std::lock_guard lock(mutex);
        result = given;
    }
    std::optional<Result> get() {
        const std::lock_guard lock(mutex);
        return result;
    }
    void clear() {
        const std::lock_guard lock(mutex);
        result.reset();
    }

private:
    std::mutex mutex;
    std::optional<Result> result;
};

/// Base of the suites that capture windows.
class CaptureTest : public ContractTest {
protected:
    ScreenCapture& capture() { return desktop().screenCapture(); }

    std::vector<std::shared_ptr<CaptureWindow>> content() {
        Answer<std::variant<ShareableContent, CaptureError>> answer;
        capture().getShareableContent(false, false, [&](const auto& result) { answer(result); });
        EXPECT_TRUE(eventually([&] { return answer.get().has_value(); }));
        return std::get<ShareableContent>(answer.get().value()).windows;
    }

    std::shared_ptr<CaptureWindow> record(const OtherWindow& window) {
        const auto windows = content();
        const auto found = std::find_if(windows.begin(), windows.end(),
                                        [&](const auto& entry) { return entry->windowID() == window.windowID; });
        return found == windows.end() ? nullptr : *found;
    }

    static StreamConfiguration configuration(std::int64_t width, std::int64_t height, double interval) {
        StreamConfiguration result;
        result.width = width;
        result.height = height;
        result.captureResolution = CaptureResolution::best;
        result.scalesToFit = true;
        result.showsCursor = false;
        result.queueDepth = 5;
        result.minimumFrameInterval = {interval, 600};
        return result;
    }

    using Picture = std::variant<std::shared_ptr<Surface>, CaptureError>;

    Picture screenshot(const std::shared_ptr<ContentFilter>& filter) {
        Answer<Picture> answer;
        capture().captureImage(filter, configuration(400, 300, 0.02), [&](const auto& result) { answer(result); });
        EXPECT_FALSE(answer.get());
        EXPECT_TRUE(eventually([&] { return answer.get().has_value(); }));
        return answer.get().value();
    }
};

} // namespace quillon::contract
