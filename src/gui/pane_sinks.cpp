// The text panes and the picture's pane as the places to which the machine's diagnostics lead.
#include "gui/pane_sinks.h"

#include "base/diagnostics.h"
#include "gui/kogui.h"

#include <string>
#include <utility>

namespace tarn {
namespace {

/// The pane of that index, or null as long as it has not been added.
koGUIwidget* paneAt(PaneIndex index) { return index < TarnGUI.nbWidgets ? &TarnGUI.widgets[index] : nullptr; }

template <PaneIndex index>
void append(const char* text) {
    koGUIwidget* pane = paneAt(index);
    if (pane != nullptr && pane->addText != nullptr) {
        pane->addText(pane, text);
    }
}

/// What the guest has said of a line so far.
std::string guestLine;

void endGuestLine() { append<paneEmuOutput>(std::exchange(guestLine, {}).c_str()); }

/// Makes lines of it; one that other text interrupts, or that is too long for a pane, ends there.
void appendGuestText(const char* text) {
    constexpr std::size_t longest = 1000;
    for (; *text != '\0'; ++text) {
        if (*text == '\n' || guestLine.size() == longest) {
            endGuestLine();
        }
        if (*text != '\n') {
            guestLine += *text;
        }
    }
}

void appendMessage(const char* text) {
    if (!guestLine.empty()) {
        endGuestLine();
    }
    append<paneEmuOutput>(text);
}

void markPicture() {
    if (koGUIwidget* pane = paneAt(paneVideoOutput)) {
        pane->dirty = 1;
        paneChanged = true;
    }
}

}  // namespace

void connectPanes() {
    const auto lead = [](Channel channel, void (*sink)(const char*)) {
        diagnosticSinks.text[static_cast<std::size_t>(channel)] = sink;
    };
    lead(Channel::EmuOutput, appendMessage);
    lead(Channel::Console, appendGuestText);
    lead(Channel::Opcodes, append<paneOpcodes>);
    lead(Channel::CpuRegisters, append<paneCpuRegisters>);
    diagnosticSinks.pictureChanged = markPicture;
}

}  // namespace tarn
