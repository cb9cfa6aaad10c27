#pragma once

/// What is at the other end of the standard streams. Nothing is where the system does not tell.
namespace Terminal {

/// Before any file is opened: one that would get the number of a stream that is closed would be written to in
/// its place. Such a stream only fails from now on.
void keepPlacesOfClosed();

/// Somebody sees there what is written, and types what is read.
bool isAt(int handle);
/// Another program, which may be one that shows it on the terminal page by page.
bool isProgramAt(int handle);

} // namespace Terminal
