#pragma once

#include <QFile>
#include <QSaveFile>
#include <QString>

/// A file whose content is replaced as a whole or not at all.
///
/// The new content goes into a temporary file beside the old one and takes its place when every byte is on
/// the disk. Only a file in a folder where nothing may be made, or whose name leaves no room for a
/// temporary's, is written in place; a failure then brings the old content back, or takes away a file that
/// was not there before. Links and permissions stay as they are.
class DurableFile
{
public:
    explicit DurableFile(const QString &path);

    /// False if the file cannot be written; nothing has changed then.
    bool open();
    /// Why open() did not succeed.
    const QString &trouble() const { return whyNot; }
    /// Once after open(). Returns why the new content could not be stored, empty if it is.
    QString replaceBy(const QByteArray &content);

private:
    bool openInPlace();
    QString replaceThroughTemporary(const QByteArray &content);
    QString replaceInPlace(const QByteArray &content);

    QSaveFile temporary;
    QFile inPlace; // open if that is how it has to be
    QString whyNot;
    bool madeInPlace = false; // there was no such file before
};
