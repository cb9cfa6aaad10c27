#include "story/terminal.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

void Terminal::keepPlacesOfClosed()
{
#ifdef Q_OS_UNIX
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) == -1) // the lowest number that is free is what a file gets
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
#endif
}

bool Terminal::isAt([[maybe_unused]] int handle)
{
#ifdef Q_OS_UNIX
    return isatty(handle) == 1;
#else
    return false;
#endif
}

bool Terminal::isProgramAt([[maybe_unused]] int handle)
{
#ifdef Q_OS_UNIX
    struct stat file
    {};
    return fstat(handle, &file) == 0 && (S_ISFIFO(file.st_mode) || S_ISSOCK(file.st_mode));
#else
    return false;
#endif
}
