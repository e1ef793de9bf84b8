// The debugger's connection and the loop that runs the machine between its packets.
#include "gdb/server.h"

#include "base/diagnostics.h"
#include "machine/machine.h"
#include "machine/run_loop.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace tarn::gdb {

namespace {

constexpr u32 stepsPerLook = 1 << 18;  ///< driver steps between two polls of the connection
constexpr int idleMilliseconds =
    100;  ///< how long a stopped machine waits before it checks whether the run is over
constexpr int sendMilliseconds = 2000;  ///< a debugger that accepts no bytes for this long is disconnected

/// Waits until the descriptor is ready for `events`. Returns false if that takes too long.
bool ready(int descriptor, short events, int milliseconds) {
    pollfd entry{descriptor, events, 0};
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    int left = milliseconds;
    for (;;) {
        const int count = poll(&entry, 1, left);
        if (count >= 0 || errno != EINTR || events != POLLOUT) {
            return count > 0;  // a wait for packets may end early: the caller checks for signals
        }
        const auto rest = end - std::chrono::steady_clock::now();
        left = std::max(
            0, static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(rest).count()));
    }
}

}  // namespace

void Descriptor::reset(int descriptor) {
    if (number >= 0) {
        close(number);
    }
    number = descriptor;
}

bool Server::listen(u16 port) {
    const auto failed = [&](const char* what) {
        std::fprintf(stderr, "%s: gdb: cannot %s port %u: %s\n", speaker, what, unsigned{port},
                     std::strerror(errno));
        return false;
    };
    listener.reset(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!listener.open()) {
        return failed("open a socket for");
    }
    const int on = 1;
    setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(listener.get(), reinterpret_cast<sockaddr*>(&address), length) != 0) {
        return failed("bind");
    }
    if (::listen(listener.get(), 1) != 0 ||
        getsockname(listener.get(), reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        return failed("listen on");
    }
    std::fprintf(stderr, "%s: gdb: waiting for a debugger on 127.0.0.1:%u\n", speaker,
                 unsigned{ntohs(address.sin_port)});
    return true;
}

Server::Finish Server::run(const RunLimits& limits, bool (*interrupted)()) {
    std::optional<Finish> finish;
    while (!finish) {
        finish = interrupted() ? std::optional(Finish::Interrupted)
                               : turn(limits, stepsPerLook, idleMilliseconds, interrupted);
    }
    if (*finish == Finish::LimitReached || *finish == Finish::Interrupted) {
        exchange(0);  // it may just have continued the machine
    }
    sayGoodbye();
    return *finish;
}

std::optional<Server::Finish> Server::turn(const RunLimits& limits, u64 most, int patience,
                                           bool (*interrupted)()) {
    if (debugger.mode() == Debugger::Mode::Killed) {
        return Finish::Killed;
    }
    if (limitReached(limits) != RunEnd::None) {
        return Finish::LimitReached;
    }
    if (debugger.mode() == Debugger::Mode::Stopped || machineRests()) {
        exchange(patience);
    } else if (stepsToLook == 0) {
        stepsToLook = stepsPerLook;
        exchange(0);
    } else if (const std::optional<std::string> stopped = debugger.beforeStep()) {
        reply(*stopped);
    } else {
        const u64 now = machine.counters.driverSteps;
        advance(std::min(now + std::min(most, stepsToLook), limits.steps), interrupted);
        stepsToLook -= std::min(stepsToLook, std::max<u64>(machine.counters.driverSteps - now, 1));
        if (const std::optional<std::string> reached = debugger.afterStep()) {
            reply(*reached);
        }
    }
    const bool goesOn = debugger.mode() == Debugger::Mode::Running || debugger.mode() == Debugger::Mode::Step;
    return goesOn && machineRests() ? std::optional(Finish::Paused) : std::nullopt;
}

void Server::sayGoodbye() {
    if (debugger.mode() == Debugger::Mode::Running) {
        reply("W00");  // the debugger waits for a stop: to it the guest has exited
    }
    closeConnection();
}

void Server::interrupt() {
    if (const std::optional<std::string> stopped = debugger.interrupt()) {
        reply(*stopped);
    }
}

/// Makes one step, or runs up to `limit` until something stops the machine. Steps that the run has already
/// passed are muted.
void Server::advance(u64 limit, bool (*interrupted)()) {
    const u64 now = machine.counters.driverSteps;
    std::optional<MutedDiagnostics> muted;
    if (timeline != nullptr && now < timeline->furthest()) {
        muted.emplace();
        limit = std::min(limit, timeline->furthest());
    }
    if (debugger.mode() == Debugger::Mode::Running) {
        runSteps(limit - now);
    } else {
        while (!driverStep() && !interrupted()) {
        }
    }
    if (timeline != nullptr && debugger.isAttached()) {
        timeline->look();
    }
}

/// Handles the listening port and the connection, waiting up to `timeout` milliseconds for either.
void Server::exchange(int timeout) {
    if (!connection.open()) {
        if (ready(listener.get(), POLLIN, timeout)) {
            acceptDebugger();
        }
    } else if (ready(connection.get(), POLLIN, timeout)) {
        receive();
    }
}

void Server::acceptDebugger() {
    // If accept() fails (the debugger is gone, or there is no free descriptor), do not poll in a busy loop.
    connection.reset(accept4(listener.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!connection.open()) {
        poll(nullptr, 0, idleMilliseconds);
        return;
    }
    const int on = 1;
    setsockopt(connection.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    reader = PacketReader();
    lastReply.clear();
    pendingSign.clear();
    acknowledging = true;
    debugger.attach();
}

void Server::receive() {
    std::array<char, 4096> bytes;
    const ssize_t count = recv(connection.get(), bytes.data(), bytes.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
        return;
    }
    if (count <= 0) {
        closeConnection();
        return;
    }
    for (ssize_t i = 0; i < count && connection.open(); ++i) {
        take(bytes[static_cast<std::size_t>(i)]);
    }
    if (!pendingSign.empty()) {  // the packet has no reply yet
        send(std::exchange(pendingSign, {}));
    }
}

void Server::take(char byte) {
    switch (reader.feed(byte)) {
    case PacketReader::Event::Nothing:
        break;
    case PacketReader::Event::Packet:
        takePacket(reader.payload());
        break;
    case PacketReader::Event::Interrupt:
        interrupt();
        break;
    case PacketReader::Event::Corrupt:
        acknowledge("-");
        break;
    case PacketReader::Event::Oversized:
        acknowledge("+");
        reply("E07");
        break;
    case PacketReader::Event::Refused:
        send(lastReply);
        break;
    }
}

void Server::takePacket(const std::string& packet) {
    acknowledge("+");
    if (packet == "QStartNoAckMode") {
        reply("OK");
        acknowledging = false;
        return;
    }
    if (const std::optional<std::string> answer = debugger.answer(packet)) {
        reply(*answer);
    }
    if (!debugger.isAttached() || debugger.mode() == Debugger::Mode::Killed) {
        closeConnection();
    }
}

/// Sends the acknowledgement of a packet, together with the reply if there is one.
void Server::acknowledge(const char* sign) {
    if (acknowledging) {
        pendingSign += sign;
    }
}

void Server::reply(const std::string& payload) {
    lastReply = framePacket(payload);
    send(std::exchange(pendingSign, {}) + lastReply);
}

void Server::send(const std::string& bytes) {
    std::size_t sent = 0;
    while (connection.open() && sent < bytes.size()) {
        const ssize_t count =
            ::send(connection.get(), bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count > 0) {
            sent += static_cast<std::size_t>(count);
        } else if (errno == EINTR) {
            continue;
        } else if (errno == EAGAIN) {
            if (!ready(connection.get(), POLLOUT, sendMilliseconds)) {
                closeConnection();
            }
        } else {
            closeConnection();
        }
    }
}

void Server::closeConnection() {
    if (connection.open()) {
        connection.reset();
        debugger.drop();
    }
}

}  // namespace tarn::gdb
