#include "scripted_application.h"

#include "rig/processes/file_descriptor.h"

#include <glib.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace lumetry::test {
namespace {

dbus_int32_t charactersIn(const std::string& text) {
    return static_cast<dbus_int32_t>(g_utf8_strlen(text.data(), std::ssize(text)));
}

/// @param end behind the last one; negative for all
std::string charactersOf(const std::string& text, dbus_int32_t start, dbus_int32_t end) {
    const auto count = charactersIn(text);
    const char* first = g_utf8_offset_to_pointer(text.data(), std::min(start, count));
    const char* last =
        g_utf8_offset_to_pointer(text.data(), end < 0 ? count : std::clamp(end, start, count));
    return {first, last};
}

constexpr const char* componentInterface = "org.a11y.atspi.Component";
constexpr const char* textInterface = "org.a11y.atspi.Text";
constexpr const char* editableTextInterface = "org.a11y.atspi.EditableText";
constexpr const char* tableInterface = "org.a11y.atspi.Table";
constexpr const char* valueInterface = "org.a11y.atspi.Value";
constexpr const char* nullPath = "/org/a11y/atspi/null";

void append(DBusMessageIter& at, int type, const void* value) {
    dbus_message_iter_append_basic(&at, type, value);
}

void appendReference(DBusMessageIter& at, const Reference& value) {
    DBusMessageIter fields;
    const char* name = value.name.c_str();
    const char* path = value.path.c_str();
    dbus_message_iter_open_container(&at, DBUS_TYPE_STRUCT, nullptr, &fields);
    append(fields, DBUS_TYPE_STRING, &name);
    append(fields, DBUS_TYPE_OBJECT_PATH, &path);
    dbus_message_iter_close_container(&at, &fields);
}

void appendArray(DBusMessageIter& at, const char* signature,
                 const std::function<void(DBusMessageIter&)>& items) {
    DBusMessageIter array;
    dbus_message_iter_open_container(&at, DBUS_TYPE_ARRAY, signature, &array);
    items(array);
    dbus_message_iter_close_container(&at, &array);
}

Answer texts(std::vector<std::string> values) {
    return [values = std::move(values)](DBusMessageIter& at) {
        appendArray(at, "s", [&](DBusMessageIter& array) {
            for (const std::string& value : values) {
                const char* letters = value.c_str();
                append(array, DBUS_TYPE_STRING, &letters);
            }
        });
    };
}

/// The signature of what an answer appends, for the variant around a property.
std::string signatureOf(const Answer& answer) {
    DBusMessage* message = dbus_message_new(DBUS_MESSAGE_TYPE_METHOD_RETURN);
    DBusMessageIter at;
    dbus_message_iter_init_append(message, &at);
    answer(at);
    std::string signature = dbus_message_get_signature(message);
    dbus_message_unref(message);
    return signature;
}

/// What runs in the application's process.
class Server {
public:
    Server(const std::string& address, ScriptedTree tree,
           const std::vector<std::string>& wellKnownNames, Counts& counts)
        : counts_(counts), tree_(std::move(tree)),
          connection_(dbus_connection_open_private(address.c_str(), nullptr)) {
        if (connection_ == nullptr || dbus_bus_register(connection_, nullptr) == FALSE) {
            _exit(EXIT_FAILURE);
        }
        for (const std::string& name : wellKnownNames) {
            dbus_bus_request_name(connection_, name.c_str(), 0, nullptr);
        }
        const auto root = tree_.find(rootPath);
        if (root != tree_.end() && root->second.directAddress) {
            listen(*root->second.directAddress);
        }
    }

    [[nodiscard]] std::string name() const { return dbus_bus_get_unique_name(connection_); }

    void run() {
        while (takeIn(*connection_)) {
            for (DBusConnection* const direct : direct_) {
                takeIn(*direct);
            }
            std::vector<pollfd> awaited;
            const auto add = [&awaited](int descriptor) {
                awaited.push_back({descriptor, POLLIN, 0});
            };
            add(descriptorOf(*connection_));
            add(listening_ != nullptr ? dbus_watch_get_unix_fd(listening_) : -1);
            for (DBusConnection* const direct : direct_) {
                add(descriptorOf(*direct));
            }
            poll(awaited.data(), awaited.size(), -1);
            if (awaited[1].revents != 0) {
                dbus_watch_handle(listening_, DBUS_WATCH_READABLE);
            }
        }
    }

private:
    /// Lets others reach it past the bus.
    void listen(const std::string& address) {
        DBusServer* const server = dbus_server_listen(address.c_str(), nullptr);
        dbus_server_set_new_connection_function(
            server,
            [](DBusServer*, DBusConnection* connection, void* self) {
                static_cast<Server*>(self)->direct_.push_back(dbus_connection_ref(connection));
            },
            this, nullptr);
        dbus_server_set_watch_functions(
            server,
            [](DBusWatch* watch, void* self) -> dbus_bool_t {
                static_cast<Server*>(self)->listening_ = watch;
                return TRUE;
            },
            [](DBusWatch*, void*) {}, nullptr, this, nullptr);
    }

    static int descriptorOf(DBusConnection& connection) {
        int descriptor = -1;
        dbus_connection_get_unix_fd(&connection, &descriptor);
        return descriptor;
    }

    /// Answers what has come; false when nothing more will.
    bool takeIn(DBusConnection& connection) {
        const bool connected = dbus_connection_read_write(&connection, 0) != FALSE;
        while (DBusMessage* request = dbus_connection_pop_message(&connection)) {
            if (dbus_message_get_type(request) == DBUS_MESSAGE_TYPE_METHOD_CALL) {
                counts_.directRequests += &connection == connection_ ? 0 : 1;
                handle(connection, *request);
            }
            dbus_message_unref(request);
            // More may come meanwhile, which the socket does not tell of any more.
            dbus_connection_flush(&connection);
        }
        return connected;
    }

    void handle(DBusConnection& connection, DBusMessage& request) {
        std::string member = dbus_message_get_member(&request);
        std::string interfaceName = dbus_message_get_interface(&request);
        const bool property = member == "Get" || member == "Set";
        if (property) {
            const char* interface = nullptr;
            const char* name = nullptr;
            DBusMessageIter arguments;
            dbus_message_iter_init(&request, &arguments);
            dbus_message_iter_get_basic(&arguments, &interface);
            dbus_message_iter_next(&arguments);
            dbus_message_iter_get_basic(&arguments, &name);
            member = name;
            interfaceName = interface;
        }
        const auto object = tree_.find(dbus_message_get_path(&request));
        if (object != tree_.end() && object->second.silent.contains(member)) {
            return;
        }
        if (object != tree_.end() && !implements(object->second, interfaceName)) {
            ++counts_.faults;
        }
        const Answer answer =
            object == tree_.end() ? Answer() : answerOf(object->second, member, request);
        DBusMessage* reply =
            answer ? dbus_message_new_method_return(&request)
                   : dbus_message_new_error(&request, DBUS_ERROR_UNKNOWN_METHOD, "not scripted");
        if (answer && property) {
            DBusMessageIter at;
            DBusMessageIter variant;
            dbus_message_iter_init_append(reply, &at);
            dbus_message_iter_open_container(&at, DBUS_TYPE_VARIANT, signatureOf(answer).c_str(),
                                             &variant);
            answer(variant);
            dbus_message_iter_close_container(&at, &variant);
        } else if (answer) {
            DBusMessageIter at;
            dbus_message_iter_init_append(reply, &at);
            answer(at);
        }
        dbus_connection_send(&connection, reply, nullptr);
        dbus_message_unref(reply);
    }

    /// Of those that only some have.
    static bool implements(const ScriptedObject& object, const std::string& interface) {
        const auto answersOneOf = [&object](std::initializer_list<const char*> members) {
            return std::ranges::any_of(members, [&object](const char* member) {
                return object.answers.contains(member) || object.silent.contains(member);
            });
        };
        if (interface == componentInterface) {
            return object.extents || answersOneOf({"GetExtents", "GetAccessibleAtPoint"});
        }
        if (interface == textInterface) {
            return object.textContent || answersOneOf({"GetText", "CharacterCount",
                                                       "GetRangeExtents", "GetAttributeRun"});
        }
        if (interface == tableInterface) {
            return object.table.has_value();
        }
        if (interface == editableTextInterface) {
            return object.isEditableText;
        }
        return interface != valueInterface || object.value || answersOneOf({"CurrentValue"});
    }

    [[nodiscard]] static std::vector<std::string> interfacesOf(const ScriptedObject& object) {
        std::vector<std::string> interfaces = {"org.a11y.atspi.Accessible"};
        for (const char* name : {componentInterface, textInterface, valueInterface, tableInterface,
                                 editableTextInterface}) {
            if (implements(object, name)) {
                interfaces.emplace_back(name);
            }
        }
        return interfaces;
    }

    [[nodiscard]] Reference own(Reference value) const {
        if (value.name.empty()) {
            value.name = name();
        }
        return value;
    }

    [[nodiscard]] std::string childAt(const ScriptedObject& object, int x, int y) const {
        if (object.childAt) {
            return object.childAt(x, y);
        }
        for (const Reference& child : object.children) {
            const auto found = tree_.find(child.path);
            if (found == tree_.end() || !found->second.extents) {
                continue;
            }
            const auto [left, top, width, height] = *found->second.extents;
            if (x >= left && x < left + width && y >= top && y < top + height) {
                return child.path;
            }
        }
        return {};
    }

    [[nodiscard]] Answer answerOf(const ScriptedObject& object, const std::string& member,
                                  DBusMessage& request) const {
        if (const auto answer = object.answers.find(member); answer != object.answers.end()) {
            return answer->second;
        }
        if (member == "GetInterfaces") {
            return texts(interfacesOf(object));
        }
        if (member == "GetApplicationBusAddress" && object.directAddress) {
            return text(*object.directAddress);
        }
        if (member == "GetRole" && object.role) {
            return unsignedNumber(*object.role);
        }
        if (member == "Name" && object.name) {
            return text(*object.name);
        }
        if (member == "CurrentValue" && object.value) {
            return [value = *object.value](DBusMessageIter& at) {
                append(at, DBUS_TYPE_DOUBLE, &value);
            };
        }
        if (member == "Parent" && object.parent) {
            return reference(own(*object.parent));
        }
        if (member == "GetChildren") {
            std::vector<Reference> children;
            for (const Reference& child : object.children) {
                children.push_back(own(child));
            }
            return references(children);
        }
        if (member == "GetState") {
            return numbers({static_cast<std::uint32_t>(object.states),
                            static_cast<std::uint32_t>(object.states >> 32U)});
        }
        const bool ofTable = member == "NRows" || member == "NColumns" ||
                             member == "GetAccessibleAt" || member.ends_with("AtIndex");
        return object.table && ofTable ? answerOfTable(*object.table, member, request)
                                       : answerOfComponentOrText(object, member, request);
    }

    /// There is nothing in a cell that is no object.
    [[nodiscard]] Answer answerOfTable(const std::array<std::int32_t, 2>& counts,
                                       const std::string& member, DBusMessage& request) const {
        const auto [rows, columns] = counts;
        dbus_int32_t first = 0;
        dbus_int32_t second = 0;
        dbus_message_get_args(&request, nullptr, DBUS_TYPE_INT32, &first, DBUS_TYPE_INT32, &second,
                              DBUS_TYPE_INVALID);
        if (member == "GetAccessibleAt") {
            const std::string path = cellPath(first, second);
            return reference(tree_.contains(path) ? own({"", path}) : Reference{"", nullPath});
        }
        const std::map<std::string, std::int32_t> numbers = {{"NRows", rows},
                                                             {"NColumns", columns},
                                                             {"GetRowAtIndex", first / columns},
                                                             {"GetColumnAtIndex", first % columns}};
        return [value = numbers.at(member)](DBusMessageIter& at) {
            append(at, DBUS_TYPE_INT32, &value);
        };
    }

    [[nodiscard]] Answer answerOfComponentOrText(const ScriptedObject& object,
                                                 const std::string& member,
                                                 DBusMessage& request) const {
        dbus_int32_t first = 0;
        dbus_int32_t second = 0;
        dbus_uint32_t coordinates = 0;
        if (member == "GetExtents" && object.extents) {
            dbus_message_get_args(&request, nullptr, DBUS_TYPE_UINT32, &coordinates,
                                  DBUS_TYPE_INVALID);
            expectCoordinates(object, coordinates);
            return [extents = *object.extents](DBusMessageIter& at) {
                DBusMessageIter fields;
                dbus_message_iter_open_container(&at, DBUS_TYPE_STRUCT, nullptr, &fields);
                for (const std::int32_t number : extents) {
                    append(fields, DBUS_TYPE_INT32, &number);
                }
                dbus_message_iter_close_container(&at, &fields);
            };
        }
        if (member == "GetAccessibleAtPoint" && object.extents &&
            dbus_message_get_args(&request, nullptr, DBUS_TYPE_INT32, &first, DBUS_TYPE_INT32,
                                  &second, DBUS_TYPE_UINT32, &coordinates,
                                  DBUS_TYPE_INVALID) != FALSE) {
            expectCoordinates(object, coordinates);
            const std::string path = childAt(object, first, second);
            return reference(path.empty() ? Reference{"", nullPath} : own({"", path}));
        }
        if (member == "CharacterCount" && object.textContent) {
            return [count = charactersIn(*object.textContent)](DBusMessageIter& at) {
                append(at, DBUS_TYPE_INT32, &count);
            };
        }
        if (member == "GetText" && object.textContent &&
            dbus_message_get_args(&request, nullptr, DBUS_TYPE_INT32, &first, DBUS_TYPE_INT32,
                                  &second, DBUS_TYPE_INVALID) != FALSE) {
            if (!object.lenientAboutText && second > charactersIn(*object.textContent)) {
                ++counts_.faults;
                return text("");
            }
            return text(charactersOf(*object.textContent, first, second));
        }
        return {};
    }

    void expectCoordinates(const ScriptedObject& object, dbus_uint32_t coordinates) const {
        constexpr dbus_uint32_t ofTheScreen = 0;
        constexpr dbus_uint32_t ofTheWindow = 1;
        counts_.faults +=
            coordinates == (object.knowsOnlyItsWindow ? ofTheWindow : ofTheScreen) ? 0 : 1;
    }

    Counts& counts_;
    ScriptedTree tree_;
    DBusConnection* connection_;
    DBusWatch* listening_ = nullptr; ///< for those that come past the bus
    std::vector<DBusConnection*> direct_;
};

} // namespace

std::string cellPath(int row, int column) {
    return "/cell/" + std::to_string(row) + "/" + std::to_string(column);
}

Answer text(std::string value) {
    return [value = std::move(value)](DBusMessageIter& at) {
        const char* letters = value.c_str();
        append(at, DBUS_TYPE_STRING, &letters);
    };
}

Answer unsignedNumber(std::uint32_t value) {
    return [value](DBusMessageIter& at) { append(at, DBUS_TYPE_UINT32, &value); };
}

Answer numbers(std::vector<std::uint32_t> values) {
    return [values = std::move(values)](DBusMessageIter& at) {
        appendArray(at, "u", [&](DBusMessageIter& array) {
            for (const std::uint32_t value : values) {
                append(array, DBUS_TYPE_UINT32, &value);
            }
        });
    };
}

Answer reference(Reference value) {
    return [value = std::move(value)](DBusMessageIter& at) { appendReference(at, value); };
}

Answer references(std::vector<Reference> values) {
    return [values = std::move(values)](DBusMessageIter& at) {
        appendArray(at, "(so)", [&](DBusMessageIter& array) {
            for (const Reference& value : values) {
                appendReference(array, value);
            }
        });
    };
}

Answer relations(std::vector<std::pair<std::uint32_t, Reference>> values) {
    return [values = std::move(values)](DBusMessageIter& at) {
        appendArray(at, "(ua(so))", [&](DBusMessageIter& array) {
            for (const auto& [kind, value] : values) {
                DBusMessageIter relation;
                dbus_message_iter_open_container(&array, DBUS_TYPE_STRUCT, nullptr, &relation);
                dbus_message_iter_append_basic(&relation, DBUS_TYPE_UINT32, &kind);
                references({value})(relation);
                dbus_message_iter_close_container(&array, &relation);
            }
        });
    };
}

Answer numberedReferences(std::string pathPrefix, int count) {
    return [pathPrefix = std::move(pathPrefix), count](DBusMessageIter& at) {
        appendArray(at, "(so)", [&](DBusMessageIter& array) {
            for (int number = 0; number < count; ++number) {
                appendReference(array, {":1.99999", pathPrefix + std::to_string(number)});
            }
        });
    };
}

ScriptedApplication::ScriptedApplication(const PrivateBus& bus, ScriptedTree tree,
                                         const std::vector<std::string>& wellKnownNames)
    : counts_(static_cast<Counts*>(mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE,
                                        MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
    desktop::Pipe pipe = desktop::makePipe();
    pid_ = fork();
    if (pid_ < 0) {
        throw std::runtime_error("no process can be started");
    }
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        Server server(bus.address(), std::move(tree), wellKnownNames, *counts_);
        const std::string line = server.name() + "\n";
        if (write(pipe.writeEnd.get(), line.data(), line.size()) > 0) {
            server.run();
        }
        _exit(EXIT_SUCCESS);
    }
    pipe.writeEnd.reset();
    name_ = desktop::readLine(pipe.readEnd.get(), desktop::generousDeadline);
    if (name_.empty()) {
        throw std::runtime_error("the scripted application does not get onto the bus");
    }
}

ScriptedApplication::~ScriptedApplication() {
    end();
    munmap(counts_, sizeof(Counts));
}

void ScriptedApplication::freeze() const {
    kill(pid_, SIGSTOP);
    waitpid(pid_, nullptr, WUNTRACED);
}

void ScriptedApplication::thaw() const {
    kill(pid_, SIGCONT);
}

void ScriptedApplication::end() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }
}

ScriptedTree registryTree(std::vector<Reference> applications, bool enabled) {
    ScriptedTree tree;
    tree[rootPath].answers["GetChildren"] = references(std::move(applications));
    tree["/org/a11y/bus"].answers["IsEnabled"] = [enabled](DBusMessageIter& at) {
        const dbus_bool_t value = enabled ? TRUE : FALSE;
        append(at, DBUS_TYPE_BOOLEAN, &value);
    };
    return tree;
}

std::vector<std::string> registryNames() {
    return {"org.a11y.atspi.Registry", "org.a11y.Bus"};
}

} // namespace lumetry::test
