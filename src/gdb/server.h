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
    /// `programName` begins what is said on standard error.
    Server(const char* programName, history::Timeline* past, const symbols::SymbolTable& names)
        : speaker(programName), timeline(past), debugger(past, names) {}

    /// Has `monitor picture` write the picture with this function.
    void setPictureWriter(bool (*writer)(const std::string& path)) { debugger.writePicture = writer; }

    /// Listens on `port`, or on any free one when it is 0, and says so on standard error.
    /// False, with the reason on standard error, when the port cannot be had.
    bool listen(u16 port);

    /// Why run() has returned.
    enum class Finish : u8 {
        LimitReached,
        Interrupted,  ///< the caller ended the run
        Killed,       ///< the debugger did
        Paused,       ///< the CPU paused, and no debugger was attached to look at it
    };

    /// Waits for a debugger and runs the machine as it says, until a limit is reached or `interrupted`, which
    /// is asked every few thousand steps, returns true. A connection that breaks off changes nothing: the
    /// machine runs on or stays stopped, and the next debugger takes over.
    Finish run(const RunLimits& limits, bool (*interrupted)());

    /// A part of such a run, for those who have a loop of their own: either waits for up to `patience`
    /// milliseconds for what a debugger says, or makes up to `most` steps. Returns why the run is over, if it
    /// is; Paused need not be its end, `interrupted` is asked within a step only.
    std::optional<Finish> turn(const RunLimits& limits, u64 most, int patience, bool (*interrupted)());

    /// Tells a debugger that waits for a stop that there is nothing more to wait for, and lets go of it.
    void sayGoodbye();

    Debugger::Mode mode() const { return debugger.mode(); }
    bool isAttached() const { return debugger.isAttached(); }

    /// Has the machine run, if no debugger is attached.
    void runOn() { debugger.runOn(); }

    /// Stops the machine as a debugger's interrupt does, and tells it.
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
    u64 stepsToLook = 0;  ///< until the connection is looked at again
    Debugger debugger;
    std::string lastReply;      ///< as it was sent, for a debugger that did not get it
    std::string pendingSign;    ///< acknowledgements that go out with the reply
    bool acknowledging = true;  ///< until the debugger asks for the mode without
};

}  // namespace tarn::gdb
