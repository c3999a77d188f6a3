#include "QuillonApp.h"

#include "AppDelegate.h"
#include "Platform/Application.h"
#include "Platform/Platform.h"

#include <memory>

namespace quillon {

int runQuillonApp() {
    auto& application = sharedApplication();
    // The application holds its delegate weakly, so this reference keeps it alive for the whole run.
    const auto delegate = std::make_shared<AppDelegate>();
    application.setDelegate(delegate);
    application.run();
    return 0;
}

} // namespace quillon
