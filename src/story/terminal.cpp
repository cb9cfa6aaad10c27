#include "story/terminal.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif

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
