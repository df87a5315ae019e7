#include "platform/linux/atspi/tree/queries.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <vector>

namespace lumetry::atspi {
namespace {

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr const char* application = "org.a11y.atspi.Application";
constexpr const char* component = "org.a11y.atspi.Component";
constexpr const char* table = "org.a11y.atspi.Table";
constexpr const char* text = "org.a11y.atspi.Text";
constexpr const char* value = "org.a11y.atspi.Value";

/// What goes along with a question.
enum class Arguments : std::uint8_t {
    property, ///< nothing: it is a property
    none,
    coordinates,
    first,
    firstAndDefaults, ///< that what holds for the whole text is wanted, too
    both,
    bothAndCoordinates,
};

struct Form {
    Question question;
    std::optional<Interface> needed;
    const char* interface;
    const char* member;
    Arguments arguments;
};

/// In the order of the questions.
constexpr std::array forms = std::to_array<Form>({
    {Question::interfaces, {}, accessible, "GetInterfaces", Arguments::none},
    {Question::role, {}, accessible, "GetRole", Arguments::none},
    {Question::name, {}, accessible, "Name", Arguments::property},
    {Question::parent, {}, accessible, "Parent", Arguments::property},
    {Question::children, {}, accessible, "GetChildren", Arguments::none},
    {Question::states, {}, accessible, "GetState", Arguments::none},
    {Question::extents, Interface::component, component, "GetExtents", Arguments::coordinates},
    {Question::value, Interface::value, value, "CurrentValue", Arguments::property},
    {Question::characterCount, Interface::text, text, "CharacterCount", Arguments::property},
    {Question::text, Interface::text, text, "GetText", Arguments::both},
    {Question::textPart, Interface::text, text, "GetText", Arguments::both},
    {Question::textPlace, Interface::text, text, "GetRangeExtents", Arguments::bothAndCoordinates},
    {Question::attributeRun, Interface::text, text, "GetAttributeRun", Arguments::firstAndDefaults},
    {Question::indexInParent, {}, accessible, "GetIndexInParent", Arguments::none},
    {Question::rowCount, Interface::table, table, "NRows", Arguments::property},
    {Question::columnCount, Interface::table, table, "NColumns", Arguments::property},
    {Question::rowAtIndex, Interface::table, table, "GetRowAtIndex", Arguments::first},
    {Question::columnAtIndex, Interface::table, table, "GetColumnAtIndex", Arguments::first},
    {Question::cell, Interface::table, table, "GetAccessibleAt", Arguments::both},
    {Question::objectAtPoint, Interface::component, component, "GetAccessibleAtPoint",
     Arguments::bothAndCoordinates},
    {Question::toolkitName, {}, application, "ToolkitName", Arguments::property},
    {Question::attributes, {}, accessible, "GetAttributes", Arguments::none},
    {Question::labels, {}, accessible, "GetRelationSet", Arguments::none},
});

constexpr bool areInOrder() {
    for (std::size_t place = 0; place < forms.size(); ++place) {
        if (static_cast<std::size_t>(forms.at(place).question) != place) {
            return false;
        }
    }
    return forms.back().question == Question::labels;
}
static_assert(areInOrder(), "a question is missing or stands in the wrong place");

const Form& formOf(Question question) {
    return forms.at(static_cast<std::size_t>(question));
}

/// Behind the last character that is asked for of the beginning of a text: some log an error about
/// more than there is.
std::int32_t endOfBeginning(const ObjectReference& object, const Habits& habits,
                            const Replies& replies) {
    const auto count = replies.get<Question::characterCount>(object).value_or(0);
    return habits.clipsText ? textBeginningCharacters
                            : static_cast<std::int32_t>(
                                  std::clamp<std::int64_t>(count, 0, textBeginningCharacters));
}

} // namespace

std::optional<Interface> interfaceFor(Question question) {
    return formOf(question).needed;
}

Message requestFor(const Query& query, AtspiCoordType coordinates) {
    const auto& [question, needed, interface, member, arguments] = formOf(query.question);
    const auto origin = static_cast<std::uint32_t>(coordinates);
    const ObjectReference& object = query.object;
    switch (arguments) {
    case Arguments::property:
        return getProperty(object, interface, member);
    case Arguments::none:
        return methodCall(object, interface, member);
    case Arguments::coordinates:
        return methodCall(object, interface, member, origin);
    case Arguments::first:
        return methodCall(object, interface, member, query.first);
    case Arguments::firstAndDefaults:
        return methodCall(object, interface, member, query.first, true);
    case Arguments::both:
        return methodCall(object, interface, member, query.first, query.second);
    case Arguments::bothAndCoordinates:
        return methodCall(object, interface, member, query.first, query.second, origin);
    }
    return nullptr;
}

template<Question question>
void Replies::store(const Reply& reply, Value& value) {
    auto answer = read<question>(reply);
    using Answer = decltype(answer);
    if (!answer) {
        return;
    }
    if constexpr (std::is_same_v<Answer, std::optional<ObjectReference>>) {
        value = References{std::move(*answer)};
    } else if constexpr (std::is_same_v<Answer, std::optional<TextAttributes>>) {
        value = reply.message;
    } else {
        value = std::move(*answer);
    }
}

const Replies::Entry* Replies::find(const ObjectReference& object, const Asked& asked) const {
    const auto known = entries_.find(object);
    if (known == entries_.end()) {
        return nullptr;
    }
    const auto entry = std::ranges::lower_bound(known->second, asked, std::less<>(), &Entry::asked);
    return entry != known->second.end() && entry->asked == asked ? &*entry : nullptr;
}

Outcome Replies::outcome(const Query& query) const {
    const Entry* const entry = find(query);
    return entry == nullptr ? Outcome::silent : entry->outcome;
}

void Replies::insert(const Query& query, const Reply& reply) {
    const Asked asked = {query.question, query.first, query.second};
    std::vector<Entry>& entries = entries_[query.object];
    auto entry = std::ranges::lower_bound(entries, asked, std::less<>(), &Entry::asked);
    if (entry == entries.end() || entry->asked != asked) {
        entry = entries.insert(entry, {asked, Outcome::silent, {}});
    }
    entry->outcome = reply.outcome;
    entry->value = std::monostate();
    const auto storeIf = [&]<std::size_t place>() {
        constexpr auto question = static_cast<Question>(place);
        if (query.question == question) {
            store<question>(reply, entry->value);
        }
    };
    [&]<std::size_t... places>(std::index_sequence<places...>) {
        (storeIf.template operator()<places>(), ...);
    }
    (std::make_index_sequence<forms.size()>());
}

void Replies::erase(const std::string& application) {
    std::erase_if(entries_, [&](const auto& object) { return object.first.name == application; });
}

void exchange(Bus& bus, const Toolkits& toolkits, std::span<const Query> queries, Deadline deadline,
              Replies& replies) {
    std::vector<Message> requests;
    requests.reserve(queries.size());
    for (const Query& query : queries) {
        const Habits& habits = toolkits.habitsFor(query.object);
        const bool isBeginning = query.question == Question::text;
        requests.push_back(requestFor(isBeginning
                                          ? Query{query.object, Question::textPart, 0,
                                                  endOfBeginning(query.object, habits, replies)}
                                          : query,
                                      habits.coordinates));
    }
    const auto answered = bus.exchange(std::move(requests), deadline);
    for (std::size_t place = 0; place < queries.size(); ++place) {
        replies.insert(queries[place], answered[place]);
    }
}

Replies exchange(Bus& bus, const Toolkits& toolkits, std::span<const Query> queries,
                 Deadline deadline) {
    Replies replies;
    exchange(bus, toolkits, queries, deadline, replies);
    return replies;
}

} // namespace lumetry::atspi
