#include "scene/damagelog.h"

#include "items/node.h"

#include <QDataStream>
#include <QDebug>
#include <QFileDevice>

#include <new>

namespace {

constexpr int mostNamed = 20;

/// How an event is called in the log.
QString shortTitle(const Node *node)
{
    constexpr qsizetype most = 40;
    const QString title = node->title();
    return title.size() <= most ? title : title.first(most - 1) + QChar(u'\u2026');
}

} // namespace

DamageLog::DamageLog(const QDataStream &stream)
{
    if (const auto *file = qobject_cast<const QFileDevice *>(stream.device()))
        name = file->fileName();
}

DamageLog::~DamageLog()
{
    try {
        tellCounts();
    } catch (const std::bad_alloc &) {
        // Whoever has found no memory for the rest of the file says so.
    }
}

void DamageLog::tellCounts() const
{
    if (misplacements > mostNamed)
        qWarning() << "Damaged scene file:" << name << "has" << misplacements - mostNamed
                   << "more coordinates that are not finite numbers, read as 0";
    if (numbered > 0)
        qWarning() << "Damaged scene file:" << name << "has" << numbered
                   << "events without an index of their own, given new ones";
    if (refusals > mostNamed)
        qWarning() << "Damaged scene file:" << name << "has" << refusals - mostNamed
                   << "more connections that close a cycle, left out";
}

void DamageLog::refused(const Node *downstream, const Node *upstream)
{
    if (++refusals > mostNamed)
        return;
    qWarning() << "Damaged scene file:" << name << "has a connection that closes a cycle, left out:"
               << "event" << downstream->getIndex() << shortTitle(downstream) << "fed by event"
               << upstream->getIndex() << shortTitle(upstream);
}

void DamageLog::misplaced(int index)
{
    if (++misplacements <= mostNamed)
        Node::tellOfCoordinate(index);
}
