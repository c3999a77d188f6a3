#pragma once

namespace quillon {

/// Runs the application on the installed platform until it terminates. Returns the process's exit status.
int runQuillonApp();

} // namespace quillon
