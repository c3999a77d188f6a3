#include "PellamKit/PellamApplicationMenu.h"

namespace quillon::PellamApplicationMenu {

void install() {
    // The program has no window yet whose text could be edited.
}

} // namespace quillon::PellamApplicationMenu
