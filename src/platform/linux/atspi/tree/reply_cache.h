#pragma once

#include "platform/linux/atspi/bus/bus.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/tree/questions.h"
#include "platform/linux/atspi/tree/toolkits.h"

#include <map>
#include <optional>
#include <span>
#include <vector>

namespace lumetry::atspi {

/// Puts questions to objects and, while it keeps answers, puts none twice. Nobody is asked for what
/// is not theirs to answer: what an object implements is asked first where that is not known yet,
/// and the end of its text where it is to stay within that.
class ReplyCache {
public:
    ReplyCache(Bus& bus, const Toolkits& toolkits) : bus_(bus), toolkits_(toolkits) {}

    /// Begins to keep answers; false when it does already.
    bool keep();
    void forget();
    [[nodiscard]] bool keeps() const { return keeps_; }

    /// The replies to all questions, in their order; a question that the object does not understand
    /// is refused without asking it. From one exchange at most, and one or two more before it where
    /// something has to be known first.
    [[nodiscard]] std::vector<Reply> ask(std::span<const Asked> questions, Deadline deadline);
    [[nodiscard]] Reply ask(const Asked& question, Deadline deadline);
    /// Keeps a reply that was got in another way.
    void remember(const Asked& question, const Reply& reply);

private:
    using Replies = std::map<Asked, Reply>;

    [[nodiscard]] std::vector<Asked> unanswered(const Replies& known,
                                                std::span<const Asked> questions) const;
    [[nodiscard]] bool isUnderstood(const Replies& known, const Asked& question) const;
    [[nodiscard]] std::optional<Asked> neededFor(const Replies& known, const Asked& question) const;
    [[nodiscard]] Message request(const Replies& known, const Asked& question) const;

    Bus& bus_;
    const Toolkits& toolkits_;
    bool keeps_ = false;
    Replies kept_;
};

} // namespace lumetry::atspi
