#include "platform/linux/atspi/elements/elements.h"

#include "platform/linux/atspi/tree/placement.h"
#include "platform/linux/atspi/tree/roles.h"
#include "platform/linux/atspi/tree/tables.h"
#include "platform/linux/atspi/tree/text_attributes.h"
#include "platform/linux/atspi/tree/text_leaves.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>

namespace lumetry::atspi {
namespace {

template<typename Kind>
std::optional<AXValue> axValue(std::optional<Kind> value) {
    return value ? std::optional<AXValue>(std::move(*value)) : std::nullopt;
}

/// Lists that are longer are not measured.
constexpr std::size_t mostChildrenMeasured = 300;

/// As many of them are looked at as are measured.
constexpr std::size_t mostFrames = 60;

/// Whether it may be the name of a type of widgets, such as "GtkEntry".
bool isTypeName(std::string_view name) {
    constexpr std::array<std::string_view, 2> libraries = {"Gtk", "Adw"};
    const auto isUpper = [](char letter) { return letter >= 'A' && letter <= 'Z'; };
    const auto isLetter = [&](char letter) {
        return isUpper(letter) || (letter >= 'a' && letter <= 'z');
    };
    return std::ranges::any_of(libraries, [&](std::string_view library) {
        return name.size() > library.size() + 1 && name.starts_with(library) &&
               isUpper(name[library.size()]) && std::ranges::all_of(name, isLetter);
    });
}

/// The application's parent, the list of all applications, is no part of its tree.
bool isDesktop(const ObjectReference& object, const ObjectReference& child) {
    return object.path == ATSPI_DBUS_PATH_ROOT && object.name != child.name;
}

/// Which of an object's children are looked at to tell whether they are to be seen. Of more
/// children nothing is measured; and an application may list windows without a place.
Habits::Unseen unseenChildrenOf(const Context& context, const ObjectReference& object,
                                std::size_t children) {
    const auto role = context.cache.get<Question::role>(object);
    if (children > mostChildrenMeasured || role == ATSPI_ROLE_APPLICATION) {
        return Habits::Unseen::none;
    }
    const Habits::Unseen usual = context.toolkits.habitsFor(object).unseenChildren;
    // What a combo box would drop down is told to be in it by every toolkit.
    return role == ATSPI_ROLE_COMBO_BOX && usual == Habits::Unseen::none ? Habits::Unseen::any
                                                                         : usual;
}

/// Adds what tells which of those are to be seen, as far as they are among those that are measured.
void addQueriesForUnseen(std::span<const ObjectReference> objects, Habits::Unseen unseen,
                         std::vector<Query>& queries) {
    if (unseen == Habits::Unseen::none) {
        return;
    }
    for (const ObjectReference& object : objects.first(std::min(objects.size(), mostFrames))) {
        queries.push_back({object, Question::extents});
        if (unseen == Habits::Unseen::any) {
            queries.push_back({object, Question::states});
        }
    }
}

/// Asks the windows of the process for their attributes, which has Chromium build its trees.
void wakeTree(Context& context, pid_t pid) {
    Bus& bus = context.bus;
    context.processes.findRootsOf(pid, [&bus](const std::vector<ObjectReference>& roots) {
        for (const ObjectReference& root : roots) {
            bus.send(requestFor({root, Question::children}), [&bus](const Reply& reply) {
                for (const ObjectReference& window :
                     referencesOf(reply).value_or(std::vector<ObjectReference>())) {
                    bus.send(requestFor({window, Question::attributes}), [](const Reply&) {});
                }
            });
        }
    });
}

} // namespace

/// One attribute: what it is called, what has to be asked for it, and how it is read from that.
struct ObjectElement::Attribute {
    std::string_view name;
    std::array<Question, 2> questions; ///< the same one twice where it takes one
    std::optional<AXValue> (ObjectElement::*read)() const;
};

const ObjectElement::Attribute* ObjectElement::attributeNamed(std::string_view name) {
    using Q = Question;
    static constexpr std::array attributes = std::to_array<Attribute>({
        // Whoever asks what an object is goes on to ask what only some can answer.
        {"AXRole", {Q::role, Q::interfaces}, &ObjectElement::role},
        {"AXTitle", {Q::name, Q::name}, &ObjectElement::title},
        {"AXValue", {Q::text, Q::value}, &ObjectElement::value},
        {"AXNumberOfCharacters", {Q::characterCount, Q::text}, &ObjectElement::numberOfCharacters},
        {"AXPosition", {Q::extents, Q::extents}, &ObjectElement::position},
        {"AXSize", {Q::extents, Q::extents}, &ObjectElement::size},
        {"AXParent", {Q::parent, Q::parent}, &ObjectElement::parent},
        {"AXChildren", {Q::children, Q::role}, &ObjectElement::children},
        {"AXEnabled", {Q::states, Q::states}, &ObjectElement::enabled},
        {"AXHidden", {Q::states, Q::extents}, &ObjectElement::hidden},
        {"AXElementBusy", {Q::states, Q::states}, &ObjectElement::busy},
        {"AXTitleUIElement", {Q::labels, Q::labels}, &ObjectElement::titleElement},
    });
    const auto* const found = std::ranges::find(attributes, name, &Attribute::name);
    return found == attributes.end() ? nullptr : found;
}

std::span<const Question> ObjectElement::questionsFor(std::string_view attribute) {
    const Attribute* const known = attributeNamed(attribute);
    return known == nullptr ? std::span<const Question>() : known->questions;
}

void ObjectElement::askForChildren(Context& context, std::span<const ObjectReference> objects) {
    ReplyCache& cache = context.cache;
    const Deadline deadline = context.deadline(std::nullopt);
    std::vector<Query> queries;
    for (const ObjectReference& object : objects) {
        queries.push_back({object, Question::children});
        queries.push_back({object, Question::role});
    }
    context.hitTest.addTextLeafQueries(objects, queries);
    cache.ask(queries, deadline);
    queries.clear();
    for (const ObjectReference& object : objects) {
        if (const auto children = cache.get<Question::children>(object)) {
            addQueriesForUnseen(*children, unseenChildrenOf(context, object, children->size()),
                                queries);
        }
    }
    context.hitTest.addTextPlaceQueries(objects, queries, deadline);
    cache.ask(queries, deadline);
}

void Element::addQueries(std::string_view /*attribute*/, std::vector<Query>& /*queries*/) const {}

void ObjectElement::addQueries(std::string_view attribute, std::vector<Query>& queries) const {
    // How the first character of a text is set, where it is known to have any. Some may be asked
    // for that without being asked first whether there are any.
    if (attribute == "AXAttributedStringForRange") {
        const auto count = context().cache.get<Question::characterCount>(object_);
        if (count.value_or(0) > 0) {
            addTextQuery(context().cache, object_, 0, 1, queries);
        }
        if (count ? *count > 0 : context().toolkits.habitsFor(object_).clipsText) {
            queries.push_back({object_, Question::attributeRun, 0, 1});
        }
    }
    for (const Question question : questionsFor(attribute)) {
        queries.push_back({object_, question});
    }
}

std::optional<AXValue>
Element::copyParameterizedAttributeValue(std::string_view /*attribute*/,
                                         const AXValue& /*parameter*/) const {
    return std::nullopt;
}

void Element::setMessagingTimeout(float seconds) const {
    timeoutSeconds_ = seconds > 0 ? std::optional(seconds) : std::nullopt;
}

void Element::setAttributeValue(std::string_view /*attribute*/, const AXValue& /*value*/) const {}

std::optional<AXUIElement> Element::copyElementAtPosition(float /*x*/, float /*y*/) const {
    return std::nullopt;
}

std::optional<AXUIElement> Element::elementAt(Point point, std::optional<pid_t> pid) const {
    auto hit = context_.hitTest.objectAt(point, pid, deadline());
    if (!hit) {
        return std::nullopt;
    }
    if (hit->text) {
        return AXUIElement(
            std::make_shared<TextElement>(context_, hit->object, hit->pid, *hit->text));
    }
    return AXUIElement(std::make_shared<ObjectElement>(context_, std::move(hit->object), hit->pid));
}

Rect Element::placeOf(const IntRect& extents, const ObjectReference& object) const {
    const HitTest& hitTest = context_.hitTest;
    const RootSpace space = context_.windows.rootSpace();
    const Rect reported =
        hitTest.placeOfFrame(object).value_or(atspi::placeOf(extents, hitTest.placementOf(object)));
    return space.toAccessibility(onWholePoints(reported,
                                               context_.toolkits.habitsFor(object).rounding,
                                               hitTest.lastClient().origin(), space.scale));
}

std::optional<AXValue> ObjectElement::copyAttributeValue(std::string_view attribute) const {
    const Attribute* const known = attributeNamed(attribute);
    if (known == nullptr) {
        return std::nullopt;
    }
    const Token kept = keepReplies();
    context().cache.ask(object_, known->questions, deadline());
    return (this->*known->read)();
}

std::optional<AXValue>
ObjectElement::copyParameterizedAttributeValue(std::string_view attribute,
                                               const AXValue& parameter) const {
    const auto range = parameter.as<AXRange>();
    if (attribute != "AXAttributedStringForRange" || !range || range->location < 0 ||
        range->length < 1 || range->length > textBeginningCharacters ||
        range->location > std::numeric_limits<std::int32_t>::max() - range->length) {
        return std::nullopt;
    }
    const auto start = static_cast<std::int32_t>(range->location);
    const auto end = start + static_cast<std::int32_t>(range->length);
    const Token kept = keepReplies();
    ReplyCache& cache = context().cache;
    std::vector<Query> queries = {{object_, Question::attributeRun, start, end}};
    addTextQuery(cache, object_, start, end, queries);
    cache.ask(queries, deadline());
    auto characters = textBetween(cache, object_, start, end);
    if (!characters) {
        return std::nullopt;
    }
    auto text = std::make_shared<AXAttributedString>();
    text->text = std::move(*characters);
    if (const auto attributes = cache.get<Question::attributeRun>(object_, start, end)) {
        const FontHabits& fonts = context().toolkits.habitsFor(object_).fonts;
        const double pointsPerUnit =
            context().hitTest.placementOf(object_).scale / context().windows.rootSpace().scale;
        // The attributes of its first character are those of the whole string here.
        text->runs.push_back(
            {{0, range->length},
             std::make_shared<AXDictionary>(runAttributes(*attributes, fonts, pointsPerUnit))});
    }
    return AXValue(std::shared_ptr<const AXAttributedString>(std::move(text)));
}

std::optional<AXValue> ObjectElement::role() const {
    const auto role = axRoleOf(context().cache, context().toolkits.habitsFor(object_), object_,
                               context().hitTest.isWindow(object_), deadline());
    return role ? std::optional<AXValue>(std::string(*role)) : std::nullopt;
}

std::optional<AXValue> ObjectElement::title() const {
    auto name = context().cache.get<Question::name>(object_);
    if (name && context().toolkits.habitsFor(object_).namedAfterTypes && isTypeName(*name)) {
        return std::nullopt;
    }
    return axValue(std::move(name));
}

/// The beginning of the element's text, without what is no text in it.
std::optional<std::string> ObjectElement::shownText() const {
    const auto beginning = context().cache.get<Question::text>(object_);
    return beginning ? std::optional(withoutPlaceholders(*beginning)) : std::nullopt;
}

/// The element's text where it has any, else its number, else the text that is empty.
std::optional<AXValue> ObjectElement::value() const {
    auto characters = shownText();
    if (!characters || characters->empty()) {
        if (const auto current = context().cache.get<Question::value>(object_)) {
            return AXNumber{*current};
        }
    }
    return axValue(std::move(characters));
}

std::optional<AXValue> ObjectElement::numberOfCharacters() const {
    const auto number = context().cache.get<Question::characterCount>(object_);
    if (!number) {
        return std::nullopt;
    }
    const auto characters = shownText();
    return characters && characters->empty() ? std::int64_t{0} : *number;
}

std::optional<Rect> ObjectElement::frame() const {
    const auto extents = context().cache.get<Question::extents>(object_);
    return extents ? std::optional(placeOf(*extents, object_)) : std::nullopt;
}

std::optional<AXValue> ObjectElement::position() const {
    const auto place = frame();
    return place ? std::optional<AXValue>(place->origin()) : std::nullopt;
}

std::optional<AXValue> ObjectElement::size() const {
    const auto place = frame();
    return place ? std::optional<AXValue>(place->size()) : std::nullopt;
}

std::optional<AXValue> ObjectElement::parent() const {
    auto object = context().cache.get<Question::parent>(object_);
    if (!object || isDesktop(*object, object_)) {
        return std::nullopt;
    }
    return relative(std::move(*object));
}

AXUIElement ObjectElement::relative(ObjectReference object) const {
    const auto pid = object.name == object_.name ? pid_ : std::nullopt;
    return AXUIElement(std::make_shared<ObjectElement>(context(), std::move(object), pid));
}

std::optional<AXValue> ObjectElement::children() const {
    ReplyCache& cache = context().cache;
    const Habits& habits = context().toolkits.habitsFor(object_);
    if (isMadeOfCells(cache, object_, habits)) {
        return rows();
    }
    auto references = cache.get<Question::children>(object_);
    if (!references) {
        return std::nullopt;
    }
    removeUnseen(*references);
    const auto texts = context().hitTest.textLeavesIn(object_, deadline());
    auto text = texts.begin();
    std::vector<AXUIElement> elements;
    elements.reserve(references->size() + texts.size());
    const auto addTexts = [&](std::size_t childrenBefore) {
        for (; text != texts.end() && text->childrenBefore <= childrenBefore; ++text) {
            elements.emplace_back(std::make_shared<TextElement>(context(), object_, pid_, *text));
        }
    };
    for (std::size_t index = 0; index < references->size(); ++index) {
        addTexts(index);
        elements.push_back(relative(std::move((*references)[index])));
    }
    addTexts(std::numeric_limits<std::size_t>::max());
    return elements;
}

std::optional<AXValue> ObjectElement::enabled() const {
    const auto states = context().cache.get<Question::states>(object_);
    return states ? std::optional<AXValue>(hasState(*states, ATSPI_STATE_ENABLED) ||
                                           hasState(*states, ATSPI_STATE_SENSITIVE))
                  : std::nullopt;
}

std::optional<AXValue> ObjectElement::hidden() const {
    const auto states = context().cache.get<Question::states>(object_);
    const auto extents = context().cache.get<Question::extents>(object_);
    if (!states) {
        return std::nullopt;
    }
    return !hasState(*states, context().toolkits.habitsFor(object_).shown) ||
           (extents && !isSomewhere(*extents));
}

std::optional<AXValue> ObjectElement::busy() const {
    const auto states = context().cache.get<Question::states>(object_);
    return states ? std::optional<AXValue>(hasState(*states, ATSPI_STATE_BUSY)) : std::nullopt;
}

std::optional<AXValue> ObjectElement::titleElement() const {
    const auto labels = context().cache.get<Question::labels>(object_);
    return labels && !labels->empty() ? std::optional<AXValue>(relative(labels->front()))
                                      : std::nullopt;
}

std::optional<AXValue> ObjectElement::rows() const {
    const auto rows = rowsSeenOf(context().cache, object_, deadline());
    if (!rows) {
        return std::nullopt;
    }
    std::vector<AXUIElement> elements;
    for (const TableRow& row : *rows) {
        elements.emplace_back(std::make_shared<RowElement>(context(), object_, pid_, row));
    }
    return elements;
}

/// Takes out those of the children that are not to be seen.
void ObjectElement::removeUnseen(std::vector<ObjectReference>& objects) const {
    const Habits::Unseen unseen = unseenChildrenOf(context(), object_, objects.size());
    if (unseen == Habits::Unseen::none) {
        return;
    }
    ReplyCache& cache = context().cache;
    std::vector<Query> queries;
    addQueriesForUnseen(objects, unseen, queries);
    cache.ask(queries, deadline());
    const auto measuredEnd =
        objects.begin() + static_cast<std::ptrdiff_t>(std::min(objects.size(), mostFrames));
    const auto isUnseen = [&](const ObjectReference& object) {
        const auto extents = cache.get<Question::extents>(object);
        const auto states =
            unseen == Habits::Unseen::any ? cache.get<Question::states>(object) : std::nullopt;
        return !extents || !isSomewhere(*extents) ||
               (states && !hasState(*states, context().toolkits.habitsFor(object).shown));
    };
    objects.erase(std::remove_if(objects.begin(), measuredEnd, isUnseen), measuredEnd);
}

std::optional<pid_t> ObjectElement::getPid() const {
    return pid_ ? pid_ : context().processes.processOf(object_.name, deadline());
}

bool ObjectElement::isSameElement(const AXUIElementBackend& other) const {
    const auto* element = dynamic_cast<const ObjectElement*>(&other);
    return element != nullptr && element->object_ == object_;
}

std::size_t ObjectElement::hash() const {
    return std::hash<std::string>()(object_.path);
}

std::optional<Rect> TextElement::frame() const {
    for (const TextLeaf& text : context().hitTest.textLeavesIn(owner_->object(), deadline())) {
        if (text.start == text_.start) {
            return placeOf(text.place, owner_->object());
        }
    }
    return std::nullopt;
}

std::int32_t TextElement::endOfBeginning() const {
    return std::min(text_.end, text_.start + textBeginningCharacters);
}

void TextElement::addQueries(std::string_view attribute, std::vector<Query>& queries) const {
    if (attribute == "AXValue") {
        addTextQuery(context().cache, owner_->object(), text_.start, endOfBeginning(), queries);
    } else if (attribute == "AXAttributedStringForRange") {
        addTextQuery(context().cache, owner_->object(), text_.start, text_.start + 1, queries);
        queries.push_back({owner_->object(), Question::attributeRun, text_.start, text_.start + 1});
    }
}

std::optional<AXValue> TextElement::copyAttributeValue(std::string_view attribute) const {
    const Token kept = keepReplies();
    if (attribute == "AXRole") {
        return "AXStaticText";
    }
    if (attribute == "AXValue") {
        std::vector<Query> queries;
        addQueries(attribute, queries);
        context().cache.ask(queries, deadline());
        const auto characters =
            textBetween(context().cache, owner_->object(), text_.start, endOfBeginning());
        return characters ? std::optional<AXValue>(withoutPlaceholders(*characters)) : std::nullopt;
    }
    if (attribute == "AXNumberOfCharacters") {
        return std::int64_t{text_.end - text_.start};
    }
    if (attribute == "AXChildren") {
        return std::vector<AXUIElement>();
    }
    if (attribute == "AXParent") {
        return AXUIElement(owner_);
    }
    if (attribute == "AXPosition") {
        const auto place = frame();
        return place ? std::optional<AXValue>(place->origin()) : std::nullopt;
    }
    if (attribute == "AXSize") {
        const auto place = frame();
        return place ? std::optional<AXValue>(place->size()) : std::nullopt;
    }
    return std::nullopt;
}

std::optional<AXValue>
TextElement::copyParameterizedAttributeValue(std::string_view attribute,
                                             const AXValue& parameter) const {
    auto range = parameter.as<AXRange>();
    if (!range || range->location < 0 || range->location >= text_.end - text_.start) {
        return std::nullopt;
    }
    range->length =
        std::min<std::int64_t>(range->length, text_.end - text_.start - range->location);
    range->location += text_.start;
    return owner_->copyParameterizedAttributeValue(attribute, *range);
}

void TextElement::setMessagingTimeout(float seconds) const {
    Element::setMessagingTimeout(seconds);
    owner_->setMessagingTimeout(seconds);
}

bool TextElement::isSameElement(const AXUIElementBackend& other) const {
    const auto* text = dynamic_cast<const TextElement*>(&other);
    return text != nullptr && text->owner_->isSameElement(*owner_) &&
           text->text_.start == text_.start;
}

std::optional<AXValue> RowElement::copyAttributeValue(std::string_view attribute) const {
    if (attribute == "AXRole") {
        return "AXRow";
    }
    if (attribute == "AXParent") {
        return AXUIElement(table_);
    }
    if (attribute == "AXPosition") {
        return placeOf(row_.place, table_->object()).origin();
    }
    if (attribute == "AXSize") {
        return placeOf(row_.place, table_->object()).size();
    }
    if (attribute != "AXChildren") {
        return std::nullopt;
    }
    const Token kept = keepReplies();
    std::vector<AXUIElement> cells;
    for (ObjectReference& cell : cellsOf(context().cache, table_->object(), row_.row, deadline())) {
        cells.emplace_back(
            std::make_shared<ObjectElement>(context(), std::move(cell), table_->getPid()));
    }
    return cells;
}

std::size_t TextElement::hash() const {
    return owner_->hash() + static_cast<std::size_t>(text_.start) + 1;
}

bool RowElement::isSameElement(const AXUIElementBackend& other) const {
    const auto* row = dynamic_cast<const RowElement*>(&other);
    return row != nullptr && row->table_->isSameElement(*table_) && row->row_.row == row_.row;
}

std::size_t RowElement::hash() const {
    return table_->hash() + static_cast<std::size_t>(row_.row) + 1;
}

std::optional<AXValue> ApplicationElement::copyAttributeValue(std::string_view attribute) const {
    const auto roots = context().processes.rootsOf(pid_, deadline());
    if (roots.empty() || ObjectElement::questionsFor(attribute).empty()) {
        return std::nullopt;
    }
    if (attribute != "AXChildren") {
        return ObjectElement(context(), roots.front(), pid_).copyAttributeValue(attribute);
    }
    std::vector<AXUIElement> windows;
    for (const ObjectReference& root : roots) {
        const auto children = ObjectElement(context(), root, pid_).copyAttributeValue(attribute);
        const auto elements = children ? children->as<std::vector<AXUIElement>>() : std::nullopt;
        if (elements) {
            windows.insert(windows.end(), elements->begin(), elements->end());
        }
    }
    return windows;
}

void ApplicationElement::setAttributeValue(std::string_view attribute, const AXValue& value) const {
    if (attribute == "AXManualAccessibility" && value.as<bool>().value_or(false)) {
        wakeTree(context(), pid_);
    }
}

std::optional<AXUIElement> ApplicationElement::copyElementAtPosition(float x, float y) const {
    return elementAt({x, y}, pid_);
}

bool ApplicationElement::isSameElement(const AXUIElementBackend& other) const {
    const auto* element = dynamic_cast<const ApplicationElement*>(&other);
    return element != nullptr && element->pid_ == pid_;
}

std::size_t ApplicationElement::hash() const {
    return std::hash<pid_t>()(pid_);
}

std::optional<AXValue> SystemWideElement::copyAttributeValue(std::string_view attribute) const {
    return attribute == "AXRole" ? std::optional<AXValue>("AXSystemWide") : std::nullopt;
}

std::optional<AXUIElement> SystemWideElement::copyElementAtPosition(float x, float y) const {
    return elementAt({x, y}, std::nullopt);
}

void SystemWideElement::setMessagingTimeout(float seconds) const {
    context().messagingTimeoutSeconds = seconds > 0 ? seconds : Context::standardTimeoutSeconds;
}

bool SystemWideElement::isSameElement(const AXUIElementBackend& other) const {
    return dynamic_cast<const SystemWideElement*>(&other) != nullptr;
}

std::size_t SystemWideElement::hash() const {
    return 0;
}

} // namespace lumetry::atspi
