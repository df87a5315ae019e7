#pragma once

#include "base/token.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace lumetry {

/// Handlers in the order they were added. A handler may add and remove handlers, itself included,
/// while it is being called: a removed one is not called any more, a new one from the next call on.
/// The tokens may outlive the list.
template<class Result, class... Args>
class AnsweringHandlerList {
public:
    using Handler = std::function<Result(Args...)>;

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

    [[nodiscard]] bool isEmpty() const {
        return std::all_of(state_->entries.begin(), state_->entries.end(),
                           [](const Entry& entry) { return entry == nullptr; });
    }

    /// Calls all of them, the oldest first.
    void call(Args... args) requires std::is_void_v<Result> {
        const auto state = state_;
        const Call running(*state);
        const std::size_t count = state->entries.size();
        for (std::size_t i = 0; i < count; ++i) {
            if (const auto entry = state->entries[i]) {
                (*entry)(args...);
            }
        }
    }

    /// Calls them, the newest first, until one gives that answer. False when none does.
    template<class Answer = Result>
    bool callUntil(const Answer& wanted, Args... args) {
        const auto state = state_;
        const Call running(*state);
        for (std::size_t i = state->entries.size(); i > 0; --i) {
            const auto entry = state->entries[i - 1];
            if (entry && (*entry)(args...) == wanted) {
                return true;
            }
        }
        return false;
    }

private:
    using Entry = std::shared_ptr<Handler>;
    struct State {
        std::vector<Entry> entries;
        int calls = 0; ///< in progress, when places must stay where they are
    };

    class Call {
    public:
        explicit Call(State& state) : state_(state) { ++state_.calls; }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;
        ~Call() {
            if (--state_.calls == 0) {
                std::erase(state_.entries, nullptr);
            }
        }

    private:
        State& state_;
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

/// Handlers that answer nothing.
template<class... Args>
using HandlerList = AnsweringHandlerList<void, Args...>;

} // namespace lumetry
