#pragma once

#include "rig/processes/file_descriptor.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

namespace lumetry::accuracy {

/// Serves one page on 127.0.0.1 and takes what the page posts back.
class PageServer {
public:
    /// On a free port. Throws std::runtime_error when there is none.
    PageServer(std::string page, std::string postPath);

    [[nodiscard]] std::string address() const;

    /// Serves until the page has posted, and returns the body. Throws std::runtime_error when it
    /// has not by the deadline.
    [[nodiscard]] std::string waitForPost(std::chrono::milliseconds deadline);

private:
    struct Visitor {
        desktop::FileDescriptor connection;
        std::string request;
    };

    void acceptVisitor();
    /// Reads what has arrived and answers once the request is complete; false when the connection
    /// is done with.
    [[nodiscard]] bool serve(Visitor& visitor);
    [[nodiscard]] std::string responseTo(const std::string& requestLine) const;

    std::string page_;
    std::string postPath_;
    desktop::FileDescriptor listener_;
    std::uint16_t port_ = 0;
    /// Browsers open connections ahead of their need, which stay silent for long.
    std::map<int, Visitor> visitors_;
    std::string posted_;
};

} // namespace lumetry::accuracy
