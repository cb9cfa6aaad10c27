#include "app/wording.h"

#include "app/scenedocument.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Notices)
};

QString nameOf(const QString &path)
{
    constexpr qsizetype most = 80;
    const QString name = QFileInfo(path).fileName();
    return name.size() <= most ? name : name.first(most / 2) + QChar(u'\u2026') + name.last(most / 2 - 1);
}

/// The folder is named by how the user gets there.
QString folderOf(const QString &path) { return QDir::toNativeSeparators(QFileInfo(path).path()); }

QString tabsOf(int count) { return count == 1 ? Texts::tr("1 tab") : Texts::tr("%1 tabs").arg(count); }

QString eventsOf(int count) { return count == 1 ? Texts::tr("1 event") : Texts::tr("%1 events").arg(count); }

QString connectionsOf(int count)
{
    return count == 1 ? Texts::tr("1 connection") : Texts::tr("%1 connections").arg(count);
}

/// What the system says has no full stop, and Qt's own words have none either.
QString sentence(const QString &text)
{
    return text.endsWith(QLatin1Char('.')) ? text : text + QLatin1Char('.');
}

} // namespace

QString Wording::saved(const QString &path, int tabs, int events)
{
    return Texts::tr("Saved %1 (%2, %3)").arg(nameOf(path), tabsOf(tabs), eventsOf(events));
}

QString Wording::notSaved(const QString &path, const QString &why, const QString &kept)
{
    const QString failed =
        sentence(Texts::tr("%1 in %2 could not be saved: %3").arg(nameOf(path), folderOf(path), why));
    const QString work = kept.isEmpty()
                             ? Texts::tr("The work is only in this window.")
                             : Texts::tr("The work is kept as %1 in %2.").arg(nameOf(kept), folderOf(kept));
    return failed + QLatin1Char(' ') + work;
}

QString Wording::notAutosaved(const QString &path, const QString &why)
{
    return sentence(Texts::tr("The autosave copy %1 in %2 could not be written: %3")
                        .arg(nameOf(path), folderOf(path), why)) +
           QLatin1Char(' ') + Texts::tr("The work is only in this window.");
}

QString Wording::notOpened(const QString &path, const QString &why)
{
    return sentence(Texts::tr("%1 in %2 could not be opened: %3").arg(nameOf(path), folderOf(path), why));
}

QString Wording::damaged(const QString &path, const Opening &opening)
{
    QStringList leftOut;
    if (opening.missingTabs > 0)
        leftOut << tabsOf(opening.missingTabs);
    if (opening.damage.incompleteEvents > 0)
        leftOut << eventsOf(opening.damage.incompleteEvents);
    if (opening.damage.lostConnections > 0)
        leftOut << connectionsOf(opening.damage.lostConnections);
    if (opening.hasRest)
        leftOut << Texts::tr("what stands at its end");
    return Texts::tr("%1 is damaged, or no story. Left out or incomplete: %2.")
        .arg(nameOf(path), leftOut.join(QStringLiteral(", ")));
}

QString Wording::notPasted()
{
    return Texts::tr("There is not enough memory to paste that. Nothing has changed.");
}

QString Wording::of(const KeptCopies::Kept &kept)
{
    if (kept.trouble.isEmpty())
        return Texts::tr("What was not saved is kept as %1 in %2")
            .arg(nameOf(kept.path), folderOf(kept.path));
    return sentence(
        Texts::tr("What was not saved could not be kept in %1: %2").arg(folderOf(kept.path), kept.trouble));
}

QString Wording::ofOther(const KeptCopies::Kept &kept)
{
    if (kept.trouble.isEmpty())
        return Texts::tr("What was in the file before is kept as %1 in %2")
            .arg(nameOf(kept.path), folderOf(kept.path));
    return sentence(Texts::tr("What was in the file before could not be kept in %1: %2")
                        .arg(folderOf(kept.path), kept.trouble));
}

QString Wording::wouldBeLost(const KeptCopies::Kept &kept)
{
    return Texts::tr("what is in the file is not from this window and could not be kept: %1")
        .arg(kept.trouble);
}
