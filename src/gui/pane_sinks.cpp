// Connects the machine's diagnostics to the panes.
#include "gui/pane_sinks.h"

#include "base/diagnostics.h"
#include "gui/screen.h"

#include <string>
#include <utility>

namespace tarn {
namespace {

/// The pane with an index, or null if it has not been added yet.
koGUIwidget* paneAt(u32 index) { return index < TarnGUI.nbWidgets ? &TarnGUI.widgets[index] : nullptr; }

template <u32 index>
void append(const char* text) {
    koGUIwidget* pane = paneAt(index);
    if (pane != nullptr && pane->addText != nullptr) {
        pane->addText(pane, text);
    }
}

/// The guest's current line so far.
std::string guestLine;

void endGuestLine() { append<emuOutputPane>(std::exchange(guestLine, {}).c_str()); }

/// Splits the guest's output into lines. A line ends early if other text interrupts it or it is too long for
/// a pane.
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

/// An unchanged picture need not be redrawn, unless a pane has been shaded, which shows at the next picture.
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
