#pragma once

/// What is at the other end of an open file. Nothing is where the system does not tell.
namespace Terminal {

/// Somebody sees there what is written, and types what is read.
bool isAt(int handle);
/// Another program, which may be one that shows it on the terminal page by page.
bool isProgramAt(int handle);

} // namespace Terminal
