#pragma once

#include "platform/linux/bus/connection.h"
#include "support/fake_linux/private_bus.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace lumetry::test {

/// What KWin and its scripts say on a bus of the test's own: windows and the pointer once the
/// program's script is run, windows' pictures, the keys that it keeps.
class ScriptedKWin {
public:
    /// @param windows the script's report
    explicit ScriptedKWin(std::string windows);
    ScriptedKWin(const ScriptedKWin&) = delete;
    ScriptedKWin& operator=(const ScriptedKWin&) = delete;
    ~ScriptedKWin();

    /// What the script tells the program.
    void tell(const char* method, const std::string& text);
    /// The same from a program that is not KWin.
    void pretend(const char* method, const std::string& text);
    /// Presses the key that the program has for an action.
    void press(const std::string& action);

    std::atomic<std::uint32_t> color = 0xFF112233; ///< of every pixel of every window
    std::atomic<bool> answers = true;              ///< whether it answers any call at all
    std::atomic<int> captures = 0;                 ///< how often a picture was asked for
    std::atomic<bool> hasScript = true;            ///< what it says when it is asked
    std::atomic<int> scripts = 0;                  ///< how often the script was run
    std::atomic<int> keys = 0;                     ///< how many keys it keeps
    std::atomic<bool> gives = true;                ///< whether a key is given to who asks for it

private:
    void serve();
    void handle(DBusMessage& call);
    void capture(DBusMessage& call);
    [[nodiscard]] BusMessage toProgram(const char* method, const std::string& text);

    PrivateBus bus_;
    std::string windows_;
    BusConnection connection_;
    std::mutex guard_;
    std::string program_; ///< who has had its script run
    std::atomic<bool> ends_ = false;
    std::thread server_;
};

} // namespace lumetry::test
