// Debugger packets, and the conditions on which the running machine stops for the debugger.
#pragma once

#include "base/types.h"
#include "history/stop_points.h"
#include "history/timeline.h"
#include "symbols/symbol_table.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn::gdb {

/// The stop reply that names the watchpoint and the watched address.
std::string watchReply(const history::WatchHit& hit);

/// Answers packets and decides whether the machine runs. The caller handles the socket and runs the machine.
class Debugger {
  public:
    /// Without a timeline the machine only runs forwards. Both must outlive the debugger.
    Debugger(history::Timeline* past, const symbols::SymbolTable& names) : timeline(past), symbols(names) {}

    /// What the caller should do with the machine.
    enum class Mode : u8 {
        Stopped,  ///< no steps until a packet changes the mode
        Step,     ///< one step, or steps within a range
        Running,  ///< run until something stops it
        Killed,   ///< end the run
    };

    Mode mode() const { return current; }

    /// False before a debugger attaches, and after it has detached or lost its connection.
    bool isAttached() const { return attached; }

    /// A debugger has connected: the machine stops where it is.
    void attach();

    /// The connection is lost. Breakpoints and watchpoints are removed; the machine runs on or stays stopped.
    void drop();

    /// Lets the machine run if no debugger is attached.
    void runOn();

    /// Handles the payload of a packet. Returns the payload of the reply, or nothing if there is none (yet).
    std::optional<std::string> answer(std::string_view packet);

    /// Handles an interrupt from the debugger. Returns the reply, or nothing if the machine is already
    /// stopped.
    std::optional<std::string> interrupt();

    /// Writes the picture to a file. Returns false on failure.
    bool (*writePicture)(const std::string& path) = nullptr;

    /// Call it before each driver step. Returns a stop reply if a breakpoint or a watchpoint prevents the
    /// step.
    std::optional<std::string> beforeStep();

    /// Call it after each driver step. Returns a stop reply if the requested step is done, or if the CPU has
    /// paused while a debugger is attached.
    std::optional<std::string> afterStep();

  private:
    std::optional<std::string> stop(std::string reply);
    std::optional<std::string> resume(Mode how, std::string_view address);
    std::optional<std::string> resumeWithSignal(Mode how, std::string_view arguments);
    std::optional<std::string> resumeThreads(std::string_view actions);
    std::optional<std::string> goBack(bool oneStep);
    std::optional<std::string> hitBefore();
    std::string changed(std::string reply);
    std::string monitor(std::string_view command);
    std::string monitorMove(std::string_view name, std::string_view arguments);

    history::Timeline* timeline;
    const symbols::SymbolTable& symbols;
    bool altered = false;  ///< the user has written to the machine since it last moved
    u64 rangeFirst = 0;    ///< Mode::Step goes on while PC is in this range
    u64 rangeEnd = 0;
    bool stepped = false;  ///< Mode::Step has left the place that it started from
    Mode current = Mode::Stopped;
    bool attached = false;
    history::StopPoints points;
    std::optional<history::ActiveStops> stops;  ///< in Mode::Running, if there are points
    std::string lastStop;
};

}  // namespace tarn::gdb
