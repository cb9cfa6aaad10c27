#pragma once

#include "scene/clipboardtab.h"
#include "scene/shownscene.h"

// What the tests of the clipboard share.

inline constexpr QPointF elsewhere(20000.5, 15000.25);

inline QString text(const char *latin1) { return QString::fromLatin1(latin1); }

inline QList<QPointF> placesOf(const ClipboardTab &tab, const QStringList &titles)
{
    QList<QPointF> places;
    for (const QString &title : titles)
        places << tab.titled(title)->scenePos();
    return places;
}
