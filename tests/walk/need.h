#pragma once

#include <QDebug>

// For programs that use the walks but are no tests: a step that does not come out as expected ends them with
// the line that failed.
#define NEED(condition)                                                                                      \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            qCritical("Line %d: %s", __LINE__, #condition);                                                  \
            return false;                                                                                    \
        }                                                                                                    \
    } while (false)
