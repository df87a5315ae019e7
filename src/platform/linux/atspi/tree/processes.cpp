#include "platform/linux/atspi/tree/processes.h"

#include "platform/linux/atspi/tree/queries.h"
#include "platform/linux/system/process_info.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

namespace lumetry::atspi {
namespace {

/// Asks for the applications on the bus: the children of the registry's root.
Message getApplications() {
    return requestFor({{ATSPI_DBUS_NAME_REGISTRY, ATSPI_DBUS_PATH_ROOT}, Question::children});
}

} // namespace

Processes::Processes(Bus& bus, std::filesystem::path processes)
    : bus_(bus), processes_(std::move(processes)), ownPid_(getpid()) {}

void Processes::dropWhenReconnected() {
    if (bus_.generation() != generation_) {
        generation_ = bus_.generation();
        owners_.clear();
        roots_.clear();
    }
}

std::vector<ObjectReference> Processes::knownRootsOf(pid_t pid) const {
    std::optional<std::string> group;
    const auto speaksFor = [&](const Owner& owner) {
        if (owner.sandbox.empty()) {
            return owner.pid == pid;
        }
        group = group ? group : controlGroupOf(processes_, pid);
        return owner.sandbox == *group;
    };
    std::vector<ObjectReference> roots;
    for (const ObjectReference& root : roots_) {
        const auto owner = owners_.find(root.name);
        if (owner != owners_.end() && speaksFor(owner->second)) {
            roots.push_back(root);
        }
    }
    return roots;
}

/// Keeps the registry's list and returns the names on it whose processes are not known.
std::vector<std::string> Processes::takeApplications(const Reply& reply) {
    dropWhenReconnected();
    auto roots = referencesOf(reply);
    if (!roots) {
        return {};
    }
    roots_ = std::move(*roots);
    std::map<std::string, Owner> known;
    std::set<std::string> unknown;
    for (const ObjectReference& root : roots_) {
        const auto owner = owners_.find(root.name);
        if (owner != owners_.end()) {
            known.insert(*owner);
        } else {
            unknown.insert(root.name);
        }
    }
    owners_ = std::move(known);
    return {unknown.begin(), unknown.end()};
}

void Processes::takeProcess(const std::string& name, const Reply& reply) {
    const auto pid = integerOf(reply);
    if (!pid) {
        return;
    }
    Owner owner{static_cast<pid_t>(*pid), {}};
    // Flatpak has a process of its own speak for all those of a sandbox, in the sandbox's group.
    if (shortNameOf(processes_, owner.pid) == "xdg-dbus-proxy") {
        const std::string group = controlGroupOf(processes_, owner.pid);
        owner.sandbox = group.starts_with("app-flatpak-") ? group : "";
    }
    owners_[name] = std::move(owner);
}

std::vector<ObjectReference> Processes::rootsOf(pid_t pid, Deadline deadline) {
    if (pid == ownPid_) {
        return {};
    }
    if (bus_.connect()) {
        dropWhenReconnected();
    }
    auto known = knownRootsOf(pid);
    if (!known.empty() || askedInVain_.contains(pid)) {
        return known;
    }
    const auto names = takeApplications(bus_.exchange(getApplications(), deadline));
    std::vector<Message> requests;
    requests.reserve(names.size());
    for (const std::string& name : names) {
        requests.push_back(getConnectionUnixProcessID(name));
    }
    const auto replies = bus_.exchange(std::move(requests), deadline);
    for (std::size_t index = 0; index < names.size(); ++index) {
        takeProcess(names[index], replies[index]);
    }
    known = knownRootsOf(pid);
    if (known.empty() && samples_ > 0) {
        askedInVain_.insert(pid);
    }
    return known;
}

void Processes::findRootsOf(pid_t pid,
                            std::function<void(const std::vector<ObjectReference>&)> continuation) {
    if (pid == ownPid_) {
        return;
    }
    if (const auto known = knownRootsOf(pid); !known.empty() && bus_.generation() == generation_) {
        continuation(known);
        return;
    }
    bus_.send(getApplications(),
              [this, pid, continuation = std::move(continuation)](const Reply& applications) {
                  const auto names = takeApplications(applications);
                  if (names.empty()) {
                      continuation(knownRootsOf(pid));
                  }
                  const auto left = std::make_shared<std::size_t>(names.size());
                  for (const std::string& name : names) {
                      bus_.send(getConnectionUnixProcessID(name),
                                [this, pid, name, left, continuation](const Reply& process) {
                                    takeProcess(name, process);
                                    if (--*left == 0) {
                                        continuation(knownRootsOf(pid));
                                    }
                                });
                  }
              });
}

std::optional<pid_t> Processes::processOf(const std::string& name, Deadline deadline) {
    if (bus_.connect()) {
        dropWhenReconnected();
    }
    if (!owners_.contains(name)) {
        takeProcess(name, bus_.exchange(getConnectionUnixProcessID(name), deadline));
    }
    const auto known = owners_.find(name);
    return known == owners_.end() ? std::nullopt : std::optional(known->second.pid);
}

void Processes::forget(const std::string& name) {
    owners_.erase(name);
    std::erase_if(roots_, [&](const ObjectReference& root) { return root.name == name; });
}

} // namespace lumetry::atspi
