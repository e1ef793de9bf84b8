// The panes Opcodes and CpuRegisters as a view of the machine.
#include "shell/machine_view.h"

#include "gui/screen.h"
#include "machine/devices.h"
#include "r5900/interpreter.h"
#include "r5900/register_lines.h"
#include "r5900/step_text.h"
#include "shell/run_control.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace tarn {
namespace {

using namespace std::chrono_literals;

constexpr auto interval = 16ms;  ///< between two updates of a running trace

bool sameRegisters(const MipsCpuRecord& one, const MipsCpuRecord& other) {
    return one.PC == other.PC && std::memcmp(&one.GPR, &other.GPR, sizeof one.GPR) == 0 &&
           one.HI.low == other.HI.low && one.LO.low == other.LO.low;
}

void showRegisters() {
    static r5900::RegisterLines registers;
    std::vector<std::string> lines;
    for (std::string_view text = registers.now(); !text.empty();) {
        const std::size_t end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    koGUIwidget_replaceText(&TarnGUI.widgets[cpuRegistersPane], lines);
}

}  // namespace

void MachineView::branchTaken() {
    const u64 step = machine.counters.driverSteps;
    if (!everTraced || (step != tracedStep && step != tracedStep + 1)) {
        firstLine = lines;
    }
    everTraced = true;
    tracedStep = step;
    ring[lines++ % ringSize] = machine.traceLine;
}

void MachineView::executed(u64, u32) { branchTaken(); }

void MachineView::update() {
    const bool stands = machineStands();
    const bool changed =
        stands ? !stood || machine.counters.driverSteps != shownStep || !sameRegisters(MipsCpu, shownCpu)
               : lines != shownLines || stood;
    if (!changed) {
        return;
    }
    const Clock::time_point now = Clock::now();
    if (!stands && !stood && now < due) {
        return;
    }
    due = now + interval;
    show(stands);
}

void MachineView::show(bool stands) {
    const u64 step = machine.counters.driverSteps;
    koGUIwidget& opcodes = TarnGUI.widgets[opcodesPane];
    std::vector<std::string> text;
    // A step is not complete while its GIF transfer continues.
    const bool leadsHere = everTraced && (!stands || step == tracedStep + (gifTransferGoesOn() ? 0 : 1));
    const u64 most = std::min<u64>(opcodes.maxLines, ringSize) - (stands ? 1 : 0);
    for (u64 line = std::max(firstLine, lines - std::min(lines, most)); leadsHere && line < lines; ++line) {
        text.emplace_back(ring[line % ringSize].data());
    }
    if (stands) {
        text.push_back("> " + r5900::nextStepText());
    }
    if (stands || stood || lines != shownLines) {
        koGUIwidget_replaceText(&opcodes, text);
        showRegisters();
    }
    shownLines = lines;
    shownStep = step;
    shownCpu = MipsCpu;
    stood = stands;
}

}  // namespace tarn
