#include "app/heap.h"

#include <QtGlobal>

#ifdef Q_OS_LINUX
#include <malloc.h>
#endif

void joinFreedMemory()
{
#ifdef __GLIBC__
    mallopt(M_MXFAST, 0);
#endif
}

void giveMemoryBack()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}
