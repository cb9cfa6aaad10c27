#pragma once

#include "app/newcontent.h"

#include <QCoreApplication>
#include <QFile>
#include <QString>

/// A file whose content is replaced as a whole or not at all.
///
/// The new content goes into a temporary file beside the old one and takes its place when every byte is on
/// the disk. Only a file in a folder where nothing may be made, or whose name leaves no room for a
/// temporary's, is written in place; a failure then brings the old content back, or takes away a file that
/// was not there before. So is a file that may be written and not replaced, and then the temporary stays if
/// that fails. Links, permissions and attributes stay as they are.
class DurableFile
{
    Q_DECLARE_TR_FUNCTIONS(DurableFile)

public:
    explicit DurableFile(const QString &path);

    /// False if the file cannot be written; nothing has changed then.
    bool open();
    /// Why open() did not succeed.
    const QString &trouble() const { return whyNot; }
    /// Once after open(). Returns why the new content could not be stored, empty if it is.
    QString replaceBy(const QByteArray &content);
    /// The file that holds the new content when it could not be stored in its place; empty if none does.
    const QString &rescue() const { return rescuedTo; }

private:
    bool isWritable();
    bool openInPlace();
    QString replaceThroughTemporary(const QByteArray &content);
    QString replaceInPlace(const QByteArray &content);

    QString path; // of the file itself, at the end of all links
    NewContent temporary;
    QFile inPlace;            // open if that is how it has to be
    bool madeInPlace = false; // there was no such file before
    QString whyNot;
    QString rescuedTo;
};
