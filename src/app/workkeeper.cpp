#include "app/workkeeper.h"

#include "app/scenedocument.h"

#include <QByteArray>

bool WorkKeeper::saveTo(const QString &path) { return document.saveTo(path).isEmpty(); }

void WorkKeeper::loadFrom(const QString &path)
{
    document.loadFrom(path, [this] { keep(KeptCopies::Occasion::open); });
}

void WorkKeeper::startAnew()
{
    keep(KeptCopies::Occasion::anew);
    document.clear();
}

void WorkKeeper::keep(KeptCopies::Occasion occasion)
{
    const QByteArray unsaved = document.unsavedBytes();
    if (!unsaved.isEmpty())
        KeptCopies().keep(unsaved, occasion);
}
