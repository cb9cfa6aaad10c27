#pragma once

/// Gives memory that was freed back to the system, where that can be asked for: a library keeps it for what
/// may come, which is nothing once a large document has gone.
void giveMemoryBack();
