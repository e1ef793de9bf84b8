// The text panes and the picture's pane as the places to which the machine's diagnostics lead.
#include "gui/pane_sinks.h"

#include "base/diagnostics.h"
#include "gui/screen.h"

#include <string>
#include <utility>

namespace tarn {
namespace {

/// The pane of that index, or null as long as it has not been added.
koGUIwidget* paneAt(u32 index) { return index < TarnGUI.nbWidgets ? &TarnGUI.widgets[index] : nullptr; }

template <u32 index>
void append(const char* text) {
    koGUIwidget* pane = paneAt(index);
    if (pane != nullptr && pane->addText != nullptr) {
        pane->addText(pane, text);
    }
}

/// What the guest has said of a line so far.
std::string guestLine;

void endGuestLine() { append<emuOutputPane>(std::exchange(guestLine, {}).c_str()); }

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
    append<emuOutputPane>(text);
}

/// A picture that is the same need not be drawn again, but shading a pane shows with the next one.
void markPicture() {
    if (koGUIwidget* pane = paneAt(videoOutputPane)) {
        const bool isNew = TarnGUI.PictureIsNew == nullptr || TarnGUI.PictureIsNew();
        if (isNew || anyPaneMoved(&TarnGUI)) {
            pane->dirty = 1;
        }
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
    lead(Channel::Opcodes, append<opcodesPane>);
    lead(Channel::CpuRegisters, append<cpuRegistersPane>);
    diagnosticSinks.pictureChanged = markPicture;
}

}  // namespace tarn
