#include "platform/linux/atspi/elements/elements.h"

#include "platform/linux/atspi/elements/waking.h"
#include "platform/linux/atspi/tree/placement.h"
#include "platform/linux/atspi/tree/roles.h"
#include "platform/linux/atspi/tree/states.h"
#include "platform/linux/atspi/tree/tables.h"
#include "platform/linux/atspi/tree/text_attributes.h"
#include "platform/linux/atspi/tree/text_leaves.h"

#include <algorithm>
#include <array>
#include <cstdint>
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

/// The beginning of an element's text, without what is no text in it.
std::optional<std::string> shownText(const Reply& beginning) {
    const auto characters = textOf(beginning);
    return characters ? std::optional(withoutPlaceholders(*characters)) : std::nullopt;
}

/// Lists that are longer are not measured.
constexpr std::size_t mostChildrenMeasured = 300;

/// The application's parent, the list of all applications, is no part of its tree.
bool isDesktop(const ObjectReference& object, const ObjectReference& child) {
    return object.path == registryRoot().path && object.name != child.name;
}

} // namespace

std::vector<Question> questionsFor(std::string_view attribute) {
    if (attribute == "AXRole") {
        // Whoever asks what an object is goes on to ask what only some can answer.
        return {Question::role, Question::interfaces};
    }
    if (attribute == "AXTitle") {
        return {Question::name};
    }
    if (attribute == "AXValue") {
        return {Question::text, Question::value};
    }
    if (attribute == "AXChildren") {
        return {Question::children, Question::role};
    }
    if (attribute == "AXParent") {
        return {Question::parent};
    }
    if (attribute == "AXPosition" || attribute == "AXSize") {
        return {Question::extents};
    }
    if (attribute == "AXNumberOfCharacters") {
        return {Question::characterCount, Question::text};
    }
    return {};
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

std::optional<AXValue> Element::place(std::string_view attribute, const Extents& extents,
                                      const ObjectReference& object) const {
    const HitTest& hitTest = context_.hitTest;
    const RootSpace space = context_.windows.rootSpace();
    const Rect reported =
        hitTest.placeOfFrame(object).value_or(placeOf(extents, hitTest.placementOf(object)));
    const Rect place =
        space.toAccessibility(onWholePoints(reported, context_.toolkits.habitsFor(object).rounding,
                                            hitTest.lastClient().origin(), space.scale));
    return attribute == "AXSize" ? AXValue(place.size()) : AXValue(place.origin());
}

std::optional<AXValue> ObjectElement::copyAttributeValue(std::string_view attribute) const {
    const auto questions = questionsFor(attribute);
    if (questions.empty()) {
        return std::nullopt;
    }
    const auto replies = ask(questions);
    if (attribute == "AXRole") {
        const auto role = axRoleOf(context().cache, context().toolkits.habitsFor(object_), object_,
                                   context().hitTest.isWindow(object_), deadline());
        return role ? std::optional<AXValue>(std::string(*role)) : std::nullopt;
    }
    if (attribute == "AXTitle") {
        return axValue(textOf(replies.front()));
    }
    if (attribute == "AXValue") {
        return value(replies[0], replies[1]);
    }
    if (attribute == "AXNumberOfCharacters") {
        return numberOfCharacters(replies[0], replies[1]);
    }
    if (attribute == "AXChildren") {
        return children(replies[0], replies[1]);
    }
    if (attribute == "AXParent") {
        return parent(replies.front());
    }
    const auto extents = extentsOf(replies.front());
    return extents ? place(attribute, *extents, object_) : std::nullopt;
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
    const auto replies =
        context().cache.ask(std::array{Asked{object_, Question::textPart, start, end},
                                       Asked{object_, Question::attributeRun, start, end}},
                            deadline());
    auto characters = textOf(replies[0]);
    if (!characters) {
        return std::nullopt;
    }
    auto text = std::make_shared<AXAttributedString>();
    text->text = std::move(*characters);
    if (const auto attributes = attributesOf(replies[1])) {
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

std::vector<Reply> ObjectElement::ask(const std::vector<Question>& questions) const {
    std::vector<Asked> asked;
    asked.reserve(questions.size());
    for (const Question question : questions) {
        asked.push_back({object_, question});
    }
    return context().cache.ask(asked, deadline());
}

/// The element's text where it has any, else its number, else the text that is empty.
std::optional<AXValue> ObjectElement::value(const Reply& beginning, const Reply& number) {
    auto characters = shownText(beginning);
    if (!characters || characters->empty()) {
        if (const auto current = numberOf(number)) {
            return AXNumber{*current};
        }
    }
    return axValue(std::move(characters));
}

std::optional<AXValue> ObjectElement::numberOfCharacters(const Reply& count,
                                                         const Reply& beginning) {
    const auto number = integerOf(count);
    if (!number) {
        return std::nullopt;
    }
    const auto characters = shownText(beginning);
    return characters && characters->empty() ? std::int64_t{0} : *number;
}

std::optional<AXValue> ObjectElement::parent(const Reply& reply) const {
    auto object = referenceOf(reply);
    if (!object || isDesktop(*object, object_)) {
        return std::nullopt;
    }
    return relative(std::move(*object));
}

AXUIElement ObjectElement::relative(ObjectReference object) const {
    const auto pid = object.name == object_.name ? pid_ : std::nullopt;
    return AXUIElement(std::make_shared<ObjectElement>(context(), std::move(object), pid));
}

std::optional<AXValue> ObjectElement::children(const Reply& reply, const Reply& role) const {
    if (isMadeOfCells(role, context().cache.ask({object_, Question::interfaces}, deadline()),
                      context().toolkits.habitsFor(object_))) {
        return rows();
    }
    auto references = referencesOf(reply);
    if (!references) {
        return std::nullopt;
    }
    // Of more children nothing is measured; and an application may list windows without a place.
    if (references->size() <= mostChildrenMeasured && integerOf(role) != ATSPI_ROLE_APPLICATION) {
        const auto unseen = context().toolkits.habitsFor(object_).unseenChildren;
        // What a combo box would drop down is told to be in it by every toolkit.
        const bool dropsDown = integerOf(role) == ATSPI_ROLE_COMBO_BOX;
        removeUnseen(*references,
                     dropsDown && unseen == Habits::Unseen::none ? Habits::Unseen::any : unseen);
    }
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

/// Takes out those that are not to be seen, as far as they are among those that are measured.
void ObjectElement::removeUnseen(std::vector<ObjectReference>& objects,
                                 Habits::Unseen unseen) const {
    constexpr std::size_t mostFrames = 60;
    if (unseen == Habits::Unseen::none) {
        return;
    }
    const std::size_t count = std::min(objects.size(), mostFrames);
    std::vector<Asked> asked;
    for (std::size_t index = 0; index < count; ++index) {
        asked.push_back({objects[index], Question::extents});
    }
    if (unseen == Habits::Unseen::any) {
        for (std::size_t index = 0; index < count; ++index) {
            asked.push_back({objects[index], Question::states});
        }
    }
    const auto replies = context().cache.ask(asked, deadline());
    const auto isSeen = [&](std::size_t index) {
        const auto extents = extentsOf(replies[index]);
        if (!extents || !extents->isSomewhere()) {
            return false;
        }
        const auto states =
            index + count < replies.size() ? statesOf(replies[index + count]) : std::nullopt;
        return !states || hasState(*states, context().toolkits.habitsFor(objects[index]).shown);
    };
    std::vector<ObjectReference> seen;
    for (std::size_t index = 0; index < objects.size(); ++index) {
        if (index >= count || isSeen(index)) {
            seen.push_back(std::move(objects[index]));
        }
    }
    objects = std::move(seen);
}

std::optional<pid_t> ObjectElement::getPid() const {
    return pid_ ? pid_ : context().processes.processOf(object_.name, deadline());
}

bool ObjectElement::isSameElement(const AXUIElementBackend& other) const {
    const auto* element = dynamic_cast<const ObjectElement*>(&other);
    return element != nullptr && element->object_ == object_;
}

std::optional<AXValue> TextElement::copyAttributeValue(std::string_view attribute) const {
    if (attribute == "AXRole") {
        return "AXStaticText";
    }
    if (attribute == "AXValue") {
        const std::int32_t end = std::min(text_.end, text_.start + textBeginningCharacters);
        const auto characters = textOf(context().cache.ask(
            {owner_->object(), Question::textPart, text_.start, end}, deadline()));
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
    if (attribute != "AXPosition" && attribute != "AXSize") {
        return std::nullopt;
    }
    for (const TextLeaf& text : context().hitTest.textLeavesIn(owner_->object(), deadline())) {
        if (text.start == text_.start) {
            return place(attribute, text.place, owner_->object());
        }
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
    if (attribute == "AXPosition" || attribute == "AXSize") {
        return place(attribute, row_.place, table_->object());
    }
    if (attribute != "AXChildren") {
        return std::nullopt;
    }
    std::vector<AXUIElement> cells;
    for (ObjectReference& cell : cellsOf(context().cache, table_->object(), row_.row, deadline())) {
        cells.emplace_back(
            std::make_shared<ObjectElement>(context(), std::move(cell), table_->getPid()));
    }
    return cells;
}

bool RowElement::isSameElement(const AXUIElementBackend& other) const {
    const auto* row = dynamic_cast<const RowElement*>(&other);
    return row != nullptr && row->table_->isSameElement(*table_) && row->row_.row == row_.row;
}

std::optional<AXValue> ApplicationElement::copyAttributeValue(std::string_view attribute) const {
    const auto roots = context().processes.rootsOf(pid_, deadline());
    if (roots.empty() || questionsFor(attribute).empty()) {
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

} // namespace lumetry::atspi
