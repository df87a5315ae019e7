#include "platform/linux/kwin/bridge.h"

#include "base/text.h"
#include "platform/linux/kwin/patience.h"
#include "platform/linux/kwin/script.h"
#include "platform/linux/system/environment.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <utility>

namespace lumetry::kwin {
namespace {

constexpr const char* service = "org.kde.KWin";
constexpr const char* scriptingPath = "/Scripting";
constexpr const char* scriptingInterface = "org.kde.kwin.Scripting";
constexpr const char* scriptInterface = "org.kde.kwin.Script";
constexpr const char* ownInterface = "app.lumetry.KWin";
/// Of the scripts' files, which stay as long as the scripts do; a process's number follows.
constexpr std::string_view filePrefix = "lumetry-kwin-";
constexpr double lingerSeconds = 2;
constexpr double checkSeconds = 2;
/// How long the script is silent about a window that goes on drawing.
constexpr auto damagePause = std::chrono::milliseconds(50);

BusMessage callOf(const std::string& path, const char* interface, const char* method,
                  const std::vector<std::string>& texts = {}) {
    BusMessage call(dbus_message_new_method_call(service, path.c_str(), interface, method));
    for (const std::string& text : texts) {
        const char* letters = text.c_str();
        dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &letters, DBUS_TYPE_INVALID);
    }
    dbus_message_set_auto_start(call.get(), FALSE);
    return call;
}

std::optional<double> numberIn(const std::string& text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value)
                                                                    : std::nullopt;
}

std::optional<std::vector<double>> numbersIn(const std::string& text, std::size_t count) {
    std::vector<double> values;
    for (const std::string& word : nonEmptyParts(text, ' ')) {
        const auto value = numberIn(word);
        if (!value) {
            return std::nullopt;
        }
        values.push_back(*value);
    }
    return values.size() == count ? std::optional(std::move(values)) : std::nullopt;
}

std::optional<Rect> rectIn(const std::string& text) {
    const auto values = numbersIn(text, 4);
    return values ? std::optional(Rect{(*values)[0], (*values)[1], (*values)[2], (*values)[3]})
                  : std::nullopt;
}

Kind kindNamed(const std::string& name) {
    constexpr std::array<std::pair<std::string_view, Kind>, 4> kinds = {
        {{"desktop", Kind::desktop},
         {"dock", Kind::dock},
         {"popup", Kind::popup},
         {"floating", Kind::floating}}};
    const auto* const found =
        std::ranges::find(kinds, name, &std::pair<std::string_view, Kind>::first);
    return found == kinds.end() ? Kind::normal : found->second;
}

/// Also the empty ones, and one behind a separator at the end.
std::vector<std::string> fieldsOf(std::string_view line) {
    std::vector<std::string> fields;
    for (;;) {
        const auto end = line.find('\t');
        fields.emplace_back(line.substr(0, end));
        if (end == std::string_view::npos) {
            return fields;
        }
        line.remove_prefix(end + 1);
    }
}

std::optional<Window> readWindow(std::string_view line) {
    constexpr std::size_t fieldCount = 14;
    const auto fields = fieldsOf(line);
    if (fields.size() != fieldCount || fields[0].empty()) {
        return std::nullopt;
    }
    const auto frame = rectIn(fields[5]);
    if (!frame) {
        return std::nullopt;
    }
    Window window;
    window.id = fields[0];
    const auto pid = numberIn(fields[1]);
    window.pid = pid && *pid > 0 ? std::optional(static_cast<pid_t>(*pid)) : std::nullopt;
    window.kind = kindNamed(fields[2]);
    window.active = fields[3] == "1";
    window.opacity = numberIn(fields[4]).value_or(1);
    window.frame = *frame;
    window.client = rectIn(fields[6]).value_or(*frame);
    window.buffer = rectIn(fields[7]).value_or(window.client);
    window.inTaskBar = fields[8] != "1";
    window.tellsDamage = fields[9] == "1";
    for (std::size_t place = 10; place < 13; ++place) {
        if (!fields[place].empty()) {
            window.classes.push_back(fields[place]);
        }
    }
    window.caption = fields[13];
    return window;
}

/// False when the bus does not say.
bool hasNoOwner(DBusConnection* bus, const std::string& name) {
    DBusError error = DBUS_ERROR_INIT;
    const bool isOwned = dbus_bus_name_has_owner(bus, name.c_str(), &error) != FALSE;
    const bool isSaid = dbus_error_is_set(&error) == FALSE;
    dbus_error_free(&error);
    return isSaid && !isOwned;
}

} // namespace

std::vector<Window> readWindows(std::string_view report) {
    std::vector<Window> windows;
    for (const std::string& line : nonEmptyParts(report, '\n')) {
        if (auto window = readWindow(line)) {
            windows.push_back(std::move(*window));
        }
    }
    return windows;
}

namespace {

void replaceAll(std::string& text, std::string_view old, const std::string& other) {
    for (auto at = text.find(old); at != std::string::npos; at = text.find(old, at)) {
        text.replace(at, old.size(), other);
        at += other.size();
    }
}

/// What KWin knows a process's script by: two at a time are not to take each other's away.
std::string scriptNameOf(pid_t process) {
    return "lumetry-" + std::to_string(process);
}

/// The name on the bus that a script reports to; one that nobody has, where the file says none.
std::string serviceIn(const std::filesystem::path& file) {
    std::ostringstream content;
    content << std::ifstream(file).rdbuf();
    const std::string text = content.str();
    constexpr std::string_view before = "callDBus(\"";
    const auto at = text.find(before);
    const auto begin = at == std::string::npos ? text.size() : at + before.size();
    const std::string name = text.substr(begin, text.find('"', begin) - begin);
    return dbus_validate_bus_name(name.c_str(), nullptr) != FALSE ? name : "app.lumetry.Nobody";
}

std::filesystem::path scriptFileOf(pid_t process) {
    return std::filesystem::path(environmentText("XDG_RUNTIME_DIR", "/tmp")) /
           (std::string(filePrefix) + std::to_string(process) + ".js");
}

} // namespace

std::unique_ptr<Bridge> Bridge::open(FileDescriptorWatcher& watcher, RunLoop& runLoop,
                                     std::string& problem) {
    BusConnection bus = openBus(sessionBusAddress());
    if (!bus) {
        problem = "Lumetry cannot reach the session bus that KWin is on: start it inside the "
                  "Plasma session, or set DBUS_SESSION_BUS_ADDRESS to that session's address.";
        return nullptr;
    }
    std::unique_ptr<Bridge> bridge(new Bridge(watcher, runLoop, std::move(bus)));
    if (!bridge->kwin_->isThere()) {
        problem = "KWin is not on the session bus: start Lumetry inside the Plasma session.";
        return nullptr;
    }
    bridge->unloadLeftovers();
    return bridge;
}

Bridge::Bridge(FileDescriptorWatcher& watcher, RunLoop& runLoop, BusConnection bus)
    : runLoop_(runLoop), bus_(std::move(bus)) {
    reader_.emplace(*bus_, watcher, runLoop, [this] { read(); });
    kwin_.emplace(*reader_, service);
}

/// Takes away what processes that were killed have left in KWin.
void Bridge::unloadLeftovers() {
    std::error_code error;
    const auto folder = scriptFileOf(0).parent_path();
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const std::string name = entry.path().filename().string();
        const auto process =
            name.starts_with(filePrefix)
                ? static_cast<pid_t>(std::strtol(&name[filePrefix.size()], nullptr, 10))
                : 0;
        if (process <= 0) {
            continue; // somebody else's, which may be anything
        }
        // This one's own was left by the same process before it began anew. Another process may
        // have got the number of one that was killed, but not its name on the bus.
        const bool isLeft = process == getpid() || (kill(process, 0) != 0 && errno == ESRCH) ||
                            hasNoOwner(bus_.get(), serviceIn(entry.path()));
        if (isLeft) {
            static_cast<void>(askKWin(scriptingPath, scriptingInterface, "unloadScript",
                                      {scriptNameOf(process)}));
            std::filesystem::remove(entry.path(), error);
        }
    }
}

/// KWin's answer; null when it is an error, or none comes in time.
BusMessage Bridge::askKWin(const std::string& path, const char* interface, const char* method,
                           const std::vector<std::string>& texts) {
    ++roundTrips_;
    return reader_->answerTo(callOf(path, interface, method, texts), patienceMilliseconds);
}

Bridge::~Bridge() {
    if (loaded_) {
        unload();
    }
}

Token Bridge::use() {
    if (++users_ == 1) {
        load();
        checkLater();
    }
    return Token(lifetime_.guard([this] {
        if (--users_ == 0) {
            linger();
        }
    }));
}

const std::optional<std::vector<Window>>& Bridge::windows() {
    ensureReport([this] { return windows_.has_value(); });
    return windows_;
}

std::optional<Point> Bridge::pointer() {
    ensureReport([this] { return pointer_.has_value(); });
    return pointer_;
}

/// Has the script run, and waits for its first report. After one that did not come there is a
/// while without another try.
void Bridge::ensureReport(const std::function<bool()>& isThere) {
    constexpr auto pause = std::chrono::seconds(1);
    read();
    if (isThere() || (silentSince_ && Clock::now() - *silentSince_ < pause)) {
        return;
    }
    if (!loaded_) {
        load();
        linger();
    }
    await(isThere);
    if (isThere()) {
        silentSince_.reset();
        return;
    }
    silentSince_ = Clock::now();
    if (loaded_) {
        unload();
    }
}

Token Bridge::onPointer(std::function<void()> handler) {
    return pointerHandlers_.add(std::move(handler));
}

Token Bridge::onDamage(std::function<void(const std::string&)> handler) {
    return damageHandlers_.add(std::move(handler));
}

std::optional<std::chrono::steady_clock::time_point>
Bridge::unchangedSince(const Window& window) const {
    if (!window.tellsDamage || !reportsSince_) {
        return std::nullopt;
    }
    const auto last = damages_.find(window.id);
    return last == damages_.end() ? reportsSince_
                                  : std::max(*reportsSince_, last->second + damagePause);
}

/// Takes in what has arrived.
void Bridge::read() {
    if (!bus_) {
        return;
    }
    const bool connected = dbus_connection_read_write(bus_.get(), 0) != FALSE;
    while (const BusMessage message{dbus_connection_pop_message(bus_.get())}) {
        handle(*message);
    }
    if (!connected) {
        reader_.reset();
        bus_.reset();
        loaded_ = false;
        windows_.reset();
        pointer_.reset();
    }
}

void Bridge::handle(DBusMessage& message) {
    if (kwin_->take(message)) {
        // A KWin that has begun anew knows nothing of the script.
        windows_.reset();
        pointer_.reset();
        loaded_ = false;
        if (users_ > 0 && kwin_->isThere()) {
            load();
        }
        return;
    }
    const char* const interface = dbus_message_get_interface(&message);
    if (dbus_message_get_type(&message) != DBUS_MESSAGE_TYPE_METHOD_CALL || interface == nullptr ||
        std::string_view(interface) != ownInterface || !kwin_->hasSent(message)) {
        return;
    }
    const char* text = nullptr;
    if (dbus_message_get_args(&message, nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID) !=
        FALSE) {
        take(dbus_message_get_member(&message), text);
    }
    if (dbus_message_get_no_reply(&message) == FALSE) {
        const BusMessage reply(dbus_message_new_method_return(&message));
        dbus_connection_send(bus_.get(), reply.get(), nullptr);
    }
}

void Bridge::take(const char* method, const char* text) {
    if (!loaded_) {
        return; // a last word of a script that was unloaded
    }
    if (std::string_view(method) == "windows") {
        auto windows = readWindows(text);
        for (Window& window : windows) {
            const auto known = windows_ ? std::ranges::find(*windows_, window.id, &Window::id)
                                        : std::vector<Window>::iterator();
            window.number = windows_ && known != windows_->end() ? known->number : ++lastNumber_;
        }
        if (!reportsSince_) {
            reportsSince_ = Clock::now();
        }
        windows_ = std::move(windows);
        forgetOldDamages();
    } else if (std::string_view(method) == "damaged") {
        damages_[text] = Clock::now();
        damageHandlers_.call(text);
    } else if (std::string_view(method) == "pointer") {
        const auto place = numbersIn(text, 2);
        const bool moved = place && pointer_ != Point{(*place)[0], (*place)[1]};
        if (moved) {
            pointer_ = Point{(*place)[0], (*place)[1]};
            tellPointer();
        }
    }
}

/// Those of windows that are not shown any more, and have not been for long: one that comes back
/// soon is known.
void Bridge::forgetOldDamages() {
    constexpr auto longestKept = std::chrono::minutes(1);
    std::erase_if(damages_, [this, oldest = Clock::now() - longestKept](const auto& damage) {
        return damage.second < oldest &&
               std::ranges::find(*windows_, damage.first, &Window::id) == windows_->end();
    });
}

/// Later, and once for several moves: this may be in the middle of what the last one has begun.
void Bridge::tellPointer() {
    if (!std::exchange(tellsPointer_, true)) {
        runLoop_.async(lifetime_.guard([this] {
            tellsPointer_ = false;
            pointerHandlers_.call();
        }));
    }
}

/// Writes the script to a file, has KWin load it, and runs it.
void Bridge::load() {
    if (!bus_ || loaded_) {
        return;
    }
    std::string text(script);
    replaceAll(text, "@SERVICE@", dbus_bus_get_unique_name(bus_.get()));
    replaceAll(text, "@PID@", std::to_string(getpid()));
    replaceAll(text, "@DAMAGE_PAUSE@", std::to_string(damagePause.count()));
    const auto file = scriptFileOf(getpid());
    std::ofstream(file) << text;
    const auto loaded = askKWin(scriptingPath, scriptingInterface, "loadScript",
                                {file.string(), scriptNameOf(getpid())});
    dbus_int32_t id = -1;
    if (!loaded ||
        dbus_message_get_args(loaded.get(), nullptr, DBUS_TYPE_INT32, &id, DBUS_TYPE_INVALID) ==
            FALSE ||
        id < 0) {
        unload(); // it may have been loaded all the same, too late, and is refused until it is gone
        return;
    }
    loaded_ = true;
    // Of what happened before it runs the script knows nothing.
    reportsSince_.reset();
    damages_.clear();
    // KWin 6, then KWin 5.
    for (const std::string& path :
         {scriptingPath + ("/Script" + std::to_string(id)), "/" + std::to_string(id)}) {
        const auto ran = askKWin(path, scriptInterface, "run");
        if (ran && dbus_message_get_type(ran.get()) == DBUS_MESSAGE_TYPE_METHOD_RETURN) {
            break;
        }
    }
}

void Bridge::unload() {
    if (bus_) {
        const auto call =
            callOf(scriptingPath, scriptingInterface, "unloadScript", {scriptNameOf(getpid())});
        dbus_message_set_no_reply(call.get(), TRUE);
        reader_->send(call);
    }
    std::error_code error;
    std::filesystem::remove(scriptFileOf(getpid()), error);
    loaded_ = false;
    windows_.reset();
    pointer_.reset();
}

/// Lets the script run on for a while, for whoever asks again soon.
void Bridge::linger() {
    if (lingers_) {
        return;
    }
    lingers_ = true;
    runLoop_.after(lingerSeconds, lifetime_.guard([this] {
        lingers_ = false;
        if (users_ == 0 && loaded_) {
            unload();
        }
    }));
}

/// Loads the script anew when it does not run: somebody else may have unloaded it.
void Bridge::check() {
    checks_ = false;
    if (users_ == 0 || !bus_) {
        return;
    }
    const auto answer =
        askKWin(scriptingPath, scriptingInterface, "isScriptLoaded", {scriptNameOf(getpid())});
    dbus_bool_t isLoaded = TRUE;
    if (answer &&
        dbus_message_get_args(answer.get(), nullptr, DBUS_TYPE_BOOLEAN, &isLoaded,
                              DBUS_TYPE_INVALID) != FALSE &&
        (isLoaded == FALSE || !loaded_)) {
        loaded_ = false;
        load();
    }
    checkLater();
}

void Bridge::checkLater() {
    if (!std::exchange(checks_, true)) {
        runLoop_.after(checkSeconds, lifetime_.guard([this] { check(); }));
    }
}

/// Takes in messages until that is so, or the time is over.
void Bridge::await(const std::function<bool()>& condition) {
    read();
    const auto end = Clock::now() + std::chrono::milliseconds(patienceMilliseconds);
    while (bus_ && loaded_ && !condition() && Clock::now() < end) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        ++roundTrips_;
        dbus_connection_read_write(bus_.get(), static_cast<int>(left.count()));
        read();
    }
}

} // namespace lumetry::kwin
