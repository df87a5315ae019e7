#include "support/fake_linux/private_bus.h"

#include "rig/processes/wait_until.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace lumetry::test {
namespace {

/// As lenient as a session's bus.
std::string configuration(const std::string& address) {
    return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>)" +
           address +
           R"(</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  <limit name="max_replies_per_connection">50000</limit>
</busconfig>
)";
}

} // namespace

PrivateBus::PrivateBus() {
    std::string folder = (std::filesystem::temp_directory_path() / "lumetry-bus-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) {
        throw std::runtime_error("no folder can be made at " + folder);
    }
    folder_ = folder;
    address_ = "unix:path=" + folder + "/bus";
    std::ofstream(folder_ / "bus.conf") << configuration(address_);
    start();
    setenv("AT_SPI_BUS_ADDRESS", address_.c_str(), 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", address_.c_str(), 1);
}

PrivateBus::~PrivateBus() {
    unsetenv("AT_SPI_BUS_ADDRESS");
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    daemon_.reset();
    std::error_code error;
    std::filesystem::remove_all(folder_, error);
}

void PrivateBus::start() {
    daemon_.emplace(std::vector<std::string>{"dbus-daemon", "--nofork", "--nosyslog",
                                             "--config-file=" + (folder_ / "bus.conf").string(),
                                             "--print-address=1"});
    desktop::requireUntil("the bus", [&] { return !daemon_->standardOutput().empty(); });
}

void PrivateBus::restart() {
    daemon_.reset();
    std::filesystem::remove(folder_ / "bus");
    start();
}

} // namespace lumetry::test
