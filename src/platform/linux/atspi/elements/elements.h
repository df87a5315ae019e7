#pragma once

#include "base/geometry.h"
#include "base/int_geometry.h"
#include "base/token.h"
#include "platform/ax_ui_element.h"
#include "platform/ax_value.h"
#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/elements/context.h"
#include "platform/linux/atspi/tree/reply_cache.h"
#include "platform/linux/atspi/tree/tables.h"
#include "platform/linux/atspi/tree/toolkits.h"

#include <sys/types.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumetry::atspi {

/// What is common to all kinds of elements.
class Element : public AXUIElementBackend {
public:
    explicit Element(Context& context) : context_(context) {}

    [[nodiscard]] std::optional<AXValue>
    copyParameterizedAttributeValue(std::string_view attribute,
                                    const AXValue& parameter) const override;
    void setAttributeValue(std::string_view attribute, const AXValue& value) const override;
    [[nodiscard]] std::optional<AXUIElement> copyElementAtPosition(float x, float y) const override;
    /// 0 goes back to the program's default.
    void setMessagingTimeout(float seconds) const override;
    /// Adds what has to be asked for an attribute as far as that is known beforehand; of
    /// "AXAttributedStringForRange" for the one of the first character.
    virtual void addQueries(std::string_view attribute, std::vector<Query>& queries) const;

protected:
    [[nodiscard]] Context& context() const { return context_; }
    [[nodiscard]] Deadline deadline() const { return context_.deadline(timeoutSeconds_); }
    [[nodiscard]] std::optional<AXUIElement> elementAt(Point point, std::optional<pid_t> pid) const;
    /// Where something of the object is. Accessibility space.
    /// @param extents as the application reports it
    [[nodiscard]] Rect placeOf(const IntRect& extents, const ObjectReference& object) const;
    /// Keeps replies for as long as an attribute is being read.
    [[nodiscard]] Token keepReplies() const { return context_.cache.keep(); }

private:
    Context& context_;
    /// A handle's own setting, which says nothing of the element.
    mutable std::optional<float> timeoutSeconds_;
};

/// An accessible object of some application.
class ObjectElement final : public Element {
public:
    /// @param pid of the application; absent when not known yet
    ObjectElement(Context& context, ObjectReference object, std::optional<pid_t> pid)
        : Element(context), object_(std::move(object)), pid_(pid) {}

    [[nodiscard]] const ObjectReference& object() const { return object_; }
    /// What has to be asked for an attribute; nothing for one that accessible objects do not have.
    [[nodiscard]] static std::span<const Question> questionsFor(std::string_view attribute);
    /// Asks for the children of all of them together, and for what tells which there are.
    static void askForChildren(Context& context, std::span<const ObjectReference> objects);

    void addQueries(std::string_view attribute, std::vector<Query>& queries) const override;
    [[nodiscard]] std::optional<AXValue>
    copyAttributeValue(std::string_view attribute) const override;
    [[nodiscard]] std::optional<AXValue>
    copyParameterizedAttributeValue(std::string_view attribute,
                                    const AXValue& parameter) const override;
    [[nodiscard]] std::optional<pid_t> getPid() const override;
    [[nodiscard]] bool isSameElement(const AXUIElementBackend& other) const override;
    [[nodiscard]] std::size_t hash() const override;

private:
    struct Attribute;

    [[nodiscard]] static const Attribute* attributeNamed(std::string_view name);
    /// @{ The attributes, once what they take has been asked.
    [[nodiscard]] std::optional<AXValue> role() const;
    [[nodiscard]] std::optional<AXValue> title() const;
    [[nodiscard]] std::optional<AXValue> value() const;
    [[nodiscard]] std::optional<AXValue> numberOfCharacters() const;
    [[nodiscard]] std::optional<AXValue> position() const;
    [[nodiscard]] std::optional<AXValue> size() const;
    [[nodiscard]] std::optional<AXValue> parent() const;
    [[nodiscard]] std::optional<AXValue> children() const;
    [[nodiscard]] std::optional<AXValue> enabled() const;
    [[nodiscard]] std::optional<AXValue> hidden() const;
    [[nodiscard]] std::optional<AXValue> busy() const;
    [[nodiscard]] std::optional<AXValue> titleElement() const;
    /// @}
    [[nodiscard]] std::optional<AXValue> rows() const;
    [[nodiscard]] std::optional<Rect> frame() const;
    [[nodiscard]] std::optional<std::string> shownText() const;
    [[nodiscard]] AXUIElement relative(ObjectReference object) const;
    void removeUnseen(std::vector<ObjectReference>& objects) const;

    ObjectReference object_;
    std::optional<pid_t> pid_;
};

/// A piece of an object's text, as a child of its own where the application has no object for it.
class TextElement final : public Element {
public:
    TextElement(Context& context, const ObjectReference& object, std::optional<pid_t> pid,
                const TextLeaf& text)
        : Element(context), owner_(std::make_shared<ObjectElement>(context, object, pid)),
          text_(text) {}

    void addQueries(std::string_view attribute, std::vector<Query>& queries) const override;
    [[nodiscard]] std::optional<AXValue>
    copyAttributeValue(std::string_view attribute) const override;
    [[nodiscard]] std::optional<AXValue>
    copyParameterizedAttributeValue(std::string_view attribute,
                                    const AXValue& parameter) const override;
    [[nodiscard]] std::optional<pid_t> getPid() const override { return owner_->getPid(); }
    void setMessagingTimeout(float seconds) const override;
    [[nodiscard]] bool isSameElement(const AXUIElementBackend& other) const override;
    [[nodiscard]] std::size_t hash() const override;

private:
    [[nodiscard]] std::optional<Rect> frame() const;
    [[nodiscard]] std::int32_t endOfBeginning() const;

    std::shared_ptr<ObjectElement> owner_;
    TextLeaf text_;
};

/// A row of a table, as a child of its own where the application has objects for its cells only.
class RowElement final : public Element {
public:
    RowElement(Context& context, const ObjectReference& table, std::optional<pid_t> pid,
               const TableRow& row)
        : Element(context), table_(std::make_shared<ObjectElement>(context, table, pid)),
          row_(row) {}

    [[nodiscard]] std::optional<AXValue>
    copyAttributeValue(std::string_view attribute) const override;
    [[nodiscard]] std::optional<pid_t> getPid() const override { return table_->getPid(); }
    [[nodiscard]] bool isSameElement(const AXUIElementBackend& other) const override;
    [[nodiscard]] std::size_t hash() const override;

private:
    std::shared_ptr<ObjectElement> table_;
    TableRow row_;
};

/// A process, whether or not it is an application on the bus.
class ApplicationElement final : public Element {
public:
    ApplicationElement(Context& context, pid_t pid) : Element(context), pid_(pid) {}

    [[nodiscard]] std::optional<AXValue>
    copyAttributeValue(std::string_view attribute) const override;
    void setAttributeValue(std::string_view attribute, const AXValue& value) const override;
    [[nodiscard]] std::optional<AXUIElement> copyElementAtPosition(float x, float y) const override;
    [[nodiscard]] std::optional<pid_t> getPid() const override { return pid_; }
    [[nodiscard]] bool isSameElement(const AXUIElementBackend& other) const override;
    [[nodiscard]] std::size_t hash() const override;

private:
    pid_t pid_;
};

/// The root of everything on screen.
class SystemWideElement final : public Element {
public:
    using Element::Element;

    [[nodiscard]] std::optional<AXValue>
    copyAttributeValue(std::string_view attribute) const override;
    [[nodiscard]] std::optional<AXUIElement> copyElementAtPosition(float x, float y) const override;
    void setMessagingTimeout(float seconds) const override;
    [[nodiscard]] std::optional<pid_t> getPid() const override { return std::nullopt; }
    [[nodiscard]] bool isSameElement(const AXUIElementBackend& other) const override;
    [[nodiscard]] std::size_t hash() const override;
};

} // namespace lumetry::atspi
