#include "Platform/macOS/MacPlatform.h"
#include "QuillonApp.h"

int main() {
    @autoreleasepool {
        const auto platform = quillon::makeMacPlatform();
        const quillon::PlatformScope scope(*platform);
        return quillon::runQuillonApp();
    }
}
