#include "Platform/WindowContent.h"

#include <algorithm>

namespace quillon {

bool haveSameControls(const FormRow& one, const FormRow& other) {
    if (one.control.index() != other.control.index() || one.title.empty() != other.title.empty() ||
        one.note.empty() != other.note.empty()) {
        return false;
    }
    const auto* items = std::get_if<RowItems>(&one.control);
    return items == nullptr ||
           std::ranges::equal(*items, std::get<RowItems>(other.control), {}, &RowItem::index, &RowItem::index);
}

} // namespace quillon
