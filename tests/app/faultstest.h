#pragma once

#include "app/faultyfiles.h"
#include "app/longruns.h"
#include "app/programtest.h"
#include "faults/savedocuments.h"

#include <cerrno>

/// A test of a window that meets faults of the disk.
class FaultsTest : public WindowTest
{
    Q_OBJECT

public:
    static void initMain() { keepFilesInMemory(); }

protected:
    /// Does that while calls for what is below the folder fail; each fault must have been met. Returns the
    /// warnings.
    template <typename Work>
    static QStringList warningsOf(const QString &folder, const std::vector<FaultyFiles::Fault> &faults,
                                  Work work)
    {
        const Warnings warnings;
        const FaultyFiles faulty(QDir::cleanPath(folder), faults);
        work();
        for (int i = 0; i < int(faults.size()); ++i) {
            if (faulty.hits(i) == 0)
                return {QStringLiteral("Fault %1 was not met").arg(i)};
        }
        return warnings.lines();
    }
};
