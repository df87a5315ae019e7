#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace lumetry {

/// Stands for the life of the object that it is a member of, for handlers, queued tasks and tokens
/// that may outlive that object. Members that are declared before it may be destroyed after it has
/// ended.
class Lifetime {
public:
    Lifetime() = default;
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;
    ~Lifetime() = default;

    /// A handler that does the same for as long as this object lives. After that it does nothing,
    /// and answers the zero of its type. It may be let go of, and its owner with it, by what it
    /// does.
    template<class Function>
    [[nodiscard]] auto guard(Function function) const {
        return [life = std::weak_ptr(life_), function = std::move(function)](auto&&... args) {
            using Result = std::invoke_result_t<Function, decltype(args)...>;
            if (life.expired()) {
                return Result();
            }
            // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): see above
            auto called = function;
            return called(std::forward<decltype(args)>(args)...);
        };
    }

private:
    struct Life {};
    std::shared_ptr<const Life> life_ = std::make_shared<const Life>();
};

} // namespace lumetry
