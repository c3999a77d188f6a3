#pragma once

#include "Platform/X11/EndToken.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

namespace quillon::x11 {

/// Handlers by key, each in force until its token is destroyed. Handlers may come and go during a call: one that
/// has gone is not called any more, one that has come is not called yet. The tokens may outlive the table. One
/// thread.
template <class Key, class... Arguments>
class Handlers {
public:
    using Handler = std::function<void(Arguments...)>;

    [[nodiscard]] RegistrationToken add(Key key, Handler handler) {
        const auto number = (*lists)[key].next++;
        (*lists)[key].entries.emplace(number, std::make_shared<Handler>(std::move(handler)));
        return makeEndToken([weak = std::weak_ptr(lists), key, number] {
            if (const auto alive = weak.lock()) {
                remove(*alive, key, number);
            }
        });
    }

    [[nodiscard]] bool has(Key key) const { return lists->contains(key); }

    void call(Key key, Arguments... arguments) {
        const auto found = lists->find(key);
        if (found == lists->end()) {
            return;
        }
        std::vector<std::weak_ptr<Handler>> now;
        for (const auto& [number, handler] : found->second.entries) {
            now.push_back(handler);
        }
        for (const auto& weak : now) {
            if (const auto handler = weak.lock()) {
                (*handler)(arguments...);
            }
        }
    }

private:
    struct List {
        std::uint64_t next = 0;
        std::map<std::uint64_t, std::shared_ptr<Handler>> entries;
    };
    using Lists = std::unordered_map<Key, List>;

    static void remove(Lists& lists, Key key, std::uint64_t number) {
        const auto found = lists.find(key);
        found->second.entries.erase(number);
        if (found->second.entries.empty()) {
            lists.erase(found);
        }
    }

    std::shared_ptr<Lists> lists = std::make_shared<Lists>();
};

} // namespace quillon::x11
