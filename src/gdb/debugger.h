// The debugger's side of the machine: what each packet asks, and when the running machine stops for it.
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

/// Answers packets and decides whether the machine runs. Knows no sockets; the machine's step is its
/// caller's.
class Debugger {
  public:
    /// Without a timeline the machine runs forwards only. Both live as long as the debugger.
    Debugger(history::Timeline* past, const symbols::SymbolTable& names) : timeline(past), symbols(names) {}

    /// Whether driver steps are to be made now.
    enum class Mode : u8 {
        Stopped,  ///< none until the debugger says so
        Step,     ///< one
        Running,  ///< on and on
        Killed,   ///< none any more: the run is to end
    };

    Mode mode() const { return current; }

    /// False before a debugger has attached, and once it has detached or its connection is gone.
    bool isAttached() const { return attached; }

    /// A debugger has connected: the machine stops where it is.
    void attach();

    /// The connection is gone. Its breakpoints and watchpoints go with it; the machine runs on or stays
    /// stopped.
    void drop();

    /// Has the machine run, if no debugger is attached.
    void runOn();

    /// Takes the payload of a packet and returns the payload of the reply, or nothing when the packet has
    /// none (yet).
    std::optional<std::string> answer(std::string_view packet);

    /// The debugger asks for the machine to stop. The reply, or nothing when it is stopped already.
    std::optional<std::string> interrupt();

    /// Writes the picture to a file for a user; false when it cannot.
    bool (*writePicture)(const std::string& path) = nullptr;

    /// To be called before each driver step: the stop reply when a breakpoint or a watchpoint keeps it from
    /// being made.
    std::optional<std::string> beforeStep();

    /// To be called after each driver step: the stop reply when that was the one asked for, or the CPU paused
    /// while a debugger is attached.
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
