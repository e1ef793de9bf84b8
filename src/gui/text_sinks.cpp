// Owns the text sinks: the fixed panes of TarnGUI that the rest of the system writes to.
#include "gui/text_sinks.h"

#include "gui/kogui.h"

#include <cstdarg>
#include <cstdio>

namespace tarn {
namespace {

/// The pane of that index, or null as long as it has not been added.
koGUIwidget* paneAt(PaneIndex index) { return index < TarnGUI.nbWidgets ? &TarnGUI.widgets[index] : nullptr; }

void append(PaneIndex index, const char* text) {
    koGUIwidget* pane = paneAt(index);
    if (pane != nullptr && pane->addText != nullptr) {
        pane->addText(pane, text);
    }
}

}  // namespace

void PrintToEmuOutput(const char* text) { append(paneEmuOutput, text); }
void PrintToOpcodeOutput(const char* text) { append(paneOpcodes, text); }
void PrintToRegistersOutput(const char* text) { append(paneCpuRegisters, text); }

void PrintfToEmuOutput(const char* format, ...) {
    char text[1024] = {};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    PrintToEmuOutput(text);
}

void MarkVideoOutputDirty() {
    if (koGUIwidget* pane = paneAt(paneVideoOutput)) {
        pane->dirty = 1;
        paneChanged = true;
    }
}

}  // namespace tarn
