#include "page_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace lumetry::accuracy {
namespace {

constexpr std::string_view headEnd = "\r\n\r\n";

/// How long the body is by the head; 0 where it does not say.
std::size_t contentLength(const std::string& head) {
    constexpr std::string_view field = "\r\nContent-Length: ";
    const auto found = head.find(field);
    return found == std::string::npos
               ? 0
               : static_cast<std::size_t>(std::atoll(head.c_str() + found + field.size()));
}

void sendAll(int connection, const std::string& data) {
    for (std::size_t sent = 0; sent < data.size();) {
        const auto count = send(connection, data.data() + sent, data.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) {
            return;
        }
        sent += static_cast<std::size_t>(count);
    }
}

} // namespace

PageServer::PageServer(std::string page, std::string postPath)
    : page_(std::move(page)), postPath_(std::move(postPath)),
      listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    constexpr int backlog = 16;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_.get(), generic, size) != 0 || listen(listener_.get(), backlog) != 0 ||
        getsockname(listener_.get(), generic, &size) != 0) {
        throw std::system_error(errno, std::generic_category(), "no port to serve the page on");
    }
    port_ = ntohs(address.sin_port);
}

std::string PageServer::address() const {
    return "http://127.0.0.1:" + std::to_string(port_) + "/";
}

std::string PageServer::waitForPost(std::chrono::milliseconds deadline) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (posted_.empty()) {
        std::vector<pollfd> watched = {{listener_.get(), POLLIN, 0}};
        for (const auto& [descriptor, visitor] : visitors_) {
            watched.push_back({descriptor, POLLIN, 0});
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            end - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            throw std::runtime_error("the browser did not post what it knows of the page");
        }
        (void)poll(watched.data(), watched.size(), static_cast<int>(left.count()));
        for (const pollfd& ready : watched) {
            if (ready.revents == 0) {
                continue;
            }
            if (ready.fd == listener_.get()) {
                acceptVisitor();
            } else if (!serve(visitors_.at(ready.fd))) {
                visitors_.erase(ready.fd);
            }
        }
    }
    return posted_;
}

void PageServer::acceptVisitor() {
    const int connection = accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC);
    if (connection >= 0) {
        visitors_.insert_or_assign(connection, Visitor{desktop::FileDescriptor(connection), ""});
    }
}

bool PageServer::serve(Visitor& visitor) {
    constexpr std::size_t readAtOnce = 65536;
    std::array<char, readAtOnce> buffer{};
    const auto count = recv(visitor.connection.get(), buffer.data(), buffer.size(), 0);
    if (count <= 0) {
        return false;
    }
    std::string& request = visitor.request;
    request.append(buffer.data(), static_cast<std::size_t>(count));
    const auto head = request.find(headEnd);
    if (head == std::string::npos) {
        return true;
    }
    const auto body = head + headEnd.size();
    if (request.size() - body < contentLength(request.substr(0, body))) {
        return true;
    }
    const std::string requestLine = request.substr(0, request.find("\r\n"));
    sendAll(visitor.connection.get(), responseTo(requestLine));
    if (requestLine.starts_with("POST " + postPath_ + " ")) {
        posted_ = request.substr(body);
    }
    return false;
}

std::string PageServer::responseTo(const std::string& requestLine) const {
    const bool isPage = requestLine.starts_with("GET / ");
    const bool isPost = requestLine.starts_with("POST " + postPath_ + " ");
    const std::string content = isPage ? page_ : "";
    return std::string("HTTP/1.1 ") + (isPage || isPost ? "200 OK" : "404 Not Found") +
           "\r\nContent-Type: text/html; charset=utf-8\r\nConnection: close\r\nContent-Length: " +
           std::to_string(content.size()) + std::string(headEnd) + content;
}

} // namespace lumetry::accuracy
