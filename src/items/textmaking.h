#pragma once

/// When a text item makes its document and the control that edits it.
///
/// They cost many times what the rest of a node costs, in time and in memory, and most texts of a large graph
/// are never on screen. A text that is made when needed answers for its size and its text all the same.
enum class TextMaking {
    atOnce,
    whenNeeded, // when it is painted, gets an event or is asked for by whoever wants to edit it
};
