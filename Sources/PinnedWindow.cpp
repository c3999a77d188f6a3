#include "PinnedWindow.h"

#include "Text.h"

namespace quillon {

std::string PinnedWindow::displayLabel() const {
    constexpr std::size_t longestTitle = 40;
    if (windowTitle.empty()) {
        return ownerName;
    }
    return ownerName + " — " + cutToCharacters(windowTitle, longestTitle);
}

} // namespace quillon
