// The text panes and the picture's pane as the places to which the machine's diagnostics lead.
#include "gui/pane_sinks.h"

#include "base/diagnostics.h"
#include "gui/kogui.h"

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
    lead(Channel::EmuOutput, append<paneEmuOutput>);
    lead(Channel::Opcodes, append<paneOpcodes>);
    lead(Channel::CpuRegisters, append<paneCpuRegisters>);
    diagnosticSinks.pictureChanged = markPicture;
}

}  // namespace tarn
