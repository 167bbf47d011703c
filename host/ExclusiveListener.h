// Listeners of the emulator own their port alone.
#pragma once

#include <httplib.h>
#include <sys/socket.h>

#include <memory>

// The library's default lets a second process bind the same port (SO_REUSEPORT) and share its
// connections; two phones would then answer each other's pushes. Only address reuse is kept, so a
// restarted phone can take its port back at once.
inline std::unique_ptr<httplib::Server> newExclusiveServer() {
    std::unique_ptr<httplib::Server> server(new httplib::Server());
    // Answers go out at once: with Nagle's algorithm a reply written in pieces waits for the
    // client's delayed acknowledgement (tens of milliseconds on a kept-alive connection).
    server->set_tcp_nodelay(true);
    server->set_socket_options([](socket_t socket) {
        const int yes = 1;
        setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    return server;
}
