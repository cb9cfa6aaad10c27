#pragma once

#include <QString>

/// What a process does whose end is measured by another one.
namespace EndWorks {

constexpr const char *option = "--be-ended";

/// Opens that file, moves an event, and waits for a signal.
int editAndWait(const QString &file);

} // namespace EndWorks
