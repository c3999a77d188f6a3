#include "PellamKit/PellamAboutView.h"

namespace quillon::PellamAboutView {

void showWindow(std::string_view /*appName*/) {
    // The program has no About window yet.
}

} // namespace quillon::PellamAboutView
