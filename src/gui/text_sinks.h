// Declares what the machine may do to the panes: append a line of text, and ask for the picture's redraw.
#pragma once

namespace tarn {

/// Set whenever the machine makes a pane dirty. Who runs many driver steps at a time clears it first and
/// stops when it is set, so that the panes show what they would have shown.
inline bool paneChanged = false;

/// Each copies one zero-terminated line to the end of a text pane (1, 2 and 3), if there is one yet.
void PrintToEmuOutput(const char* text);
void PrintToOpcodeOutput(const char* text);
void PrintToRegistersOutput(const char* text);

/// PrintToEmuOutput of a printf-style text (cut at 1023 characters).
[[gnu::format(printf, 1, 2)]] void PrintfToEmuOutput(const char* format, ...);

/// Marks pane 0, VideoOutput, for redrawing.
void MarkVideoOutputDirty();

}  // namespace tarn
