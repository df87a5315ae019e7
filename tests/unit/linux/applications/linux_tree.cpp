#include "linux_tree.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace lumetry::test {

namespace fs = std::filesystem;

LinuxTree::LinuxTree() {
    std::string folder =
        (fs::canonical(fs::temp_directory_path()) / "lumetry-linux-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) {
        throw std::runtime_error("no folder can be made at " + folder);
    }
    root_ = folder;
    clear();
}

LinuxTree::~LinuxTree() {
    std::error_code error;
    fs::remove_all(root_, error);
}

void LinuxTree::clear() const {
    fs::remove_all(root_);
    fs::create_directories(at("share/applications"));
    fs::create_directories(at("bin"));
    process({1, "", {}, {}, "init.scope", 0, "1"});
}

void LinuxTree::write(const std::string& path, const std::string& content) const {
    fs::create_directories(at(path).parent_path());
    std::ofstream(at(path), std::ios::binary) << content;
}

fs::path LinuxTree::program(const std::string& path, const std::string& content) const {
    write(path, content);
    fs::permissions(at(path), fs::perms::owner_all);
    return at(path);
}

void LinuxTree::entry(const std::string& id, const std::string& keys) const {
    write("share/applications/" + id + ".desktop",
          "[Desktop Entry]\nType=Application\n" + keys + "\n");
}

void LinuxTree::process(const FakeProcess& process) const {
    const std::string folder = "proc/" + std::to_string(process.pid) + "/";
    const auto lines = [](const std::vector<std::string>& words) {
        std::string text;
        for (const std::string& word : words) {
            text += word + '\0';
        }
        return text;
    };
    // The name holds what could be taken for the end of it.
    std::string fields =
        std::to_string(process.pid) + " (a) S (b) S " + std::to_string(process.parent);
    for (int field = 5; field < 22; ++field) {
        fields += " 0";
    }
    write(folder + "stat", fields + " " + process.start + " 0 0\n");
    write(folder + "comm", "shortname\n");
    write(folder + "cmdline", lines(process.arguments));
    write(folder + "environ", lines(process.environment));
    write(folder + "cgroup", "0::/user.slice/" + process.controlGroup + "\n");
    if (!process.executable.empty()) {
        std::error_code error;
        fs::remove(at(folder + "exe"), error);
        fs::create_symlink(process.executable, at(folder + "exe"));
    }
}

void LinuxTree::endProcess(pid_t pid) const {
    fs::remove_all(at("proc/" + std::to_string(pid)));
}

SystemPlaces LinuxTree::places() const {
    SystemPlaces places;
    places.processes = at("proc");
    places.dataFolders = {at("home"), at("share")};
    places.programFolders = {at("bin")};
    places.languages = {"de_AT", "de"};
    return places;
}

} // namespace lumetry::test
