#include "DiagnosticLog.h"

#include "Defaults.h"
#include "Platform/Clock.h"
#include "Platform/FileSystem.h"
#include "Platform/OneTimeValue.h"
#include "Platform/Platform.h"
#include "Platform/Scheduler.h"
#include "ProgrammingError.h"
#include "Text.h"

namespace quillon {

namespace {

OneTimeValue<std::string> pathValue;
OneTimeValue<std::shared_ptr<SerialQueue>> queueValue;
OneTimeValue<std::unique_ptr<DateFormatter>> dateFormatterValue;

const std::string& wpLogPath() {
    return pathValue.get([] {
        auto& files = platform().fileSystem();
        const auto library = files.userLibraryDirectory();
        if (!library) {
            programmingError("the system reports no user Library directory");
        }
        const auto directory = *library + "/Logs/Quillon";
        files.createDirectory(directory, 0700);
        return directory + "/quillon.log";
    });
}

SerialQueue& wpLogQueue() {
    return *queueValue.get([] { return platform().scheduler().makeSerialQueue("local.quillon.floating.log"); });
}

const DateFormatter& wpLogFmt() {
    return *dateFormatterValue.get([] { return platform().clock().makeDateFormatter("yyyy-MM-dd HH:mm:ss.SSS"); });
}

void writeLine(const std::string& line) {
    if (!isValidUTF8(line)) {
        return;
    }
    auto& files = platform().fileSystem();
    const int descriptor = files.openForAppending(wpLogPath(), 0600);
    if (descriptor < 0) {
        return;
    }
    files.write(descriptor, line);
    files.close(descriptor);
}

} // namespace

bool isDebugLoggingOn() {
    return Defaults::boolForKey(Defaults::debugLogging);
}

std::string logTimestamp() {
    return wpLogFmt().string(platform().clock().now());
}

void appendToLog(const std::string& timestamp, const std::string& message) {
    wpLogQueue().async([line = timestamp + "  " + message + "\n"] { writeLine(line); });
}

} // namespace quillon
