// The debugger's connection: a loopback TCP port, and the run of the machine between its packets.
#pragma once

#include "base/types.h"
#include "gdb/debugger.h"
#include "gdb/packet.h"
#include "machine/run_loop.h"

#include <string>

namespace tarn::gdb {

/// A file descriptor that closes itself.
class Descriptor {
  public:
    Descriptor() = default;
    ~Descriptor() { reset(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return number; }
    bool open() const { return number >= 0; }
    void reset(int descriptor = -1);

  private:
    int number = -1;
};

/// One debugger at a time, on a port of the loopback interface.
class Server {
  public:
    /// With a timeline, which must be begun before the first turn, the machine can be run backwards.
    /// `programName` begins each message on standard error.
    Server(const char* programName, history::Timeline* past, const symbols::SymbolTable& names)
        : speaker(programName), timeline(past), debugger(past, names) {}

    /// Sets the function with which `monitor picture` writes the picture.
    void setPictureWriter(bool (*writer)(const std::string& path)) { debugger.writePicture = writer; }

    /// Listens on `port`, or on any free port if it is 0, and reports it on standard error. Returns false
    /// after a message if the port is not available.
    bool listen(u16 port);

    /// Why run() has returned.
    enum class Finish : u8 {
        LimitReached,
        Interrupted,  ///< the caller ended the run
        Killed,       ///< the debugger did
        Paused,       ///< the CPU paused while no debugger was attached
    };

    /// Waits for a debugger and runs the machine under its control, until a limit is reached or
    /// `interrupted`, which is called every few thousand steps, returns true. A lost connection changes
    /// nothing: the machine runs on or stays stopped, and the next debugger takes over.
    Finish run(const RunLimits& limits, bool (*interrupted)());

    /// A part of such a run, for callers with a loop of their own: either waits up to `patience` milliseconds
    /// for a packet, or makes up to `most` steps. Returns why the run has ended, if it has; after Paused the
    /// caller may go on. `interrupted` is only called within a step.
    std::optional<Finish> turn(const RunLimits& limits, u64 most, int patience, bool (*interrupted)());

    /// Tells a waiting debugger that the program has exited, and closes the connection.
    void sayGoodbye();

    Debugger::Mode mode() const { return debugger.mode(); }
    bool isAttached() const { return debugger.isAttached(); }

    /// Lets the machine run if no debugger is attached.
    void runOn() { debugger.runOn(); }

    /// Stops the machine like an interrupt from the debugger, and reports the stop to it.
    void interrupt();

  private:
    void exchange(int timeout);
    void acceptDebugger();
    void receive();
    void take(char byte);
    void takePacket(const std::string& packet);
    void acknowledge(const char* sign);
    void advance(u64 limit, bool (*interrupted)());
    void reply(const std::string& payload);
    void send(const std::string& bytes);
    void closeConnection();

    const char* speaker;
    history::Timeline* timeline;
    Descriptor listener;
    Descriptor connection;
    PacketReader reader;
    u64 stepsToLook = 0;  ///< until the connection is polled again
    Debugger debugger;
    std::string lastReply;      ///< as sent, to be repeated if the debugger asks for it
    std::string pendingSign;    ///< acknowledgements that go out with the reply
    bool acknowledging = true;  ///< until the debugger turns acknowledgements off
};

}  // namespace tarn::gdb
