#pragma once

#include "support/fake_linux/private_bus.h"

#include <dbus/dbus.h>
#include <sys/types.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace lumetry::test {

/// A reference to an object; without a name, of the application itself.
struct Reference {
    std::string name;
    std::string path;
};

/// Appends what a method or property answers.
using Answer = std::function<void(DBusMessageIter&)>;
[[nodiscard]] Answer text(std::string value);
[[nodiscard]] Answer unsignedNumber(std::uint32_t value);
[[nodiscard]] Answer numbers(std::vector<std::uint32_t> values);
[[nodiscard]] Answer reference(Reference value);
[[nodiscard]] Answer references(std::vector<Reference> values);
/// Relations to other objects, each with its number in AT-SPI.
[[nodiscard]] Answer relations(std::vector<std::pair<std::uint32_t, Reference>> values);
/// @param count how often the references are to be repeated, with a number behind their paths
[[nodiscard]] Answer numberedReferences(std::string pathPrefix, int count);

/// An accessible object that answers as it is told. What is not set is answered with an error.
struct ScriptedObject {
    std::optional<std::uint32_t> role;
    std::optional<std::string> name;
    std::optional<std::string> textContent;
    /// Text is asked for beyond its end without fault.
    bool lenientAboutText = false;
    /// Places are asked for in the window's coordinates only.
    bool knowsOnlyItsWindow = false;
    std::optional<double> value;
    bool isEditableText = false;
    /// Of the object that stands for the application: where it listens, to be reached past the bus.
    std::optional<std::string> directAddress;
    /// Its rows and columns, as it tells them; the cells are the objects at cellPath().
    std::optional<std::array<std::int32_t, 2>> table;
    std::optional<Reference> parent;
    std::vector<Reference> children;
    std::optional<std::array<std::int32_t, 4>> extents;
    std::uint64_t states = showing;
    /// The path of the child at a point, empty for none; by default the first child there.
    std::function<std::string(int x, int y)> childAt;
    std::map<std::string, Answer> answers; ///< by method or property, instead of the above
    std::set<std::string> silent;          ///< methods and properties never answered

    static constexpr std::uint64_t showing = std::uint64_t{1} << 25U;
};

[[nodiscard]] std::string cellPath(int row, int column);

using ScriptedTree = std::map<std::string, ScriptedObject>;
inline constexpr const char* rootPath = "/org/a11y/atspi/accessible/root";

/// What an application counts.
struct Counts {
    int faults = 0;
    int directRequests = 0;
};

/// A process of its own that has objects on a bus.
class ScriptedApplication {
public:
    /// @param wellKnownNames taken besides the connection's own
    ScriptedApplication(const PrivateBus& bus, ScriptedTree tree,
                        const std::vector<std::string>& wellKnownNames = {});
    ~ScriptedApplication();
    ScriptedApplication(const ScriptedApplication&) = delete;
    ScriptedApplication& operator=(const ScriptedApplication&) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }
    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] Reference root() const { return {name_, rootPath}; }
    /// How often it has been asked what is not its to answer: for an interface that an object does
    /// not have, for text beyond its end, for places in coordinates that it does not know.
    [[nodiscard]] int faults() const { return counts_->faults; }
    /// How many requests have come past the bus.
    [[nodiscard]] int directRequests() const { return counts_->directRequests; }
    void freeze() const;
    void thaw() const;
    void end();

private:
    Counts* counts_; ///< in memory that it shares
    pid_t pid_ = -1;
    std::string name_;
};

/// The registry of a bus, listing those applications, and the service that says that accessibility
/// is switched on.
[[nodiscard]] ScriptedTree registryTree(std::vector<Reference> applications, bool enabled = true);
[[nodiscard]] std::vector<std::string> registryNames();

} // namespace lumetry::test
