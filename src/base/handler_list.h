#pragma once

#include "base/token.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace lumetry {

/// Handlers that are called in the order they were added. A handler may add and remove handlers,
/// itself included, while it is being called: a removed one is not called any more, a new one
/// from the next call on. The tokens may outlive the list.
template<class... Args>
class HandlerList {
public:
    using Handler = std::function<void(Args...)>;

    [[nodiscard]] Token add(Handler handler) {
        auto entry = std::make_shared<Handler>(std::move(handler));
        state_->entries.push_back(entry);
        return Token([state = std::weak_ptr(state_), entry = std::weak_ptr(entry)] {
            const auto list = state.lock();
            if (list) {
                remove(*list, entry.lock());
            }
        });
    }

    void call(Args... args) {
        const auto state = state_;
        ++state->calls;
        const std::size_t count = state->entries.size();
        for (std::size_t i = 0; i < count; ++i) {
            if (const auto entry = state->entries[i]) {
                (*entry)(args...);
            }
        }
        if (--state->calls == 0) {
            std::erase(state->entries, nullptr);
        }
    }

private:
    using Entry = std::shared_ptr<Handler>;
    struct State {
        std::vector<Entry> entries;
        int calls = 0; ///< in progress, when places must stay where they are
    };

    static void remove(State& state, const Entry& entry) {
        const auto found = std::find(state.entries.begin(), state.entries.end(), entry);
        if (!entry || found == state.entries.end()) {
            return;
        }
        if (state.calls > 0) {
            found->reset();
        } else {
            state.entries.erase(found);
        }
    }

    std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace lumetry
