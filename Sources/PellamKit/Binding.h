#pragma once

#include <functional>

namespace quillon {

/// A value that is kept elsewhere.
template <class T>
struct Binding {
    std::function<T()> get;
    std::function<void(T)> set;
};

} // namespace quillon
