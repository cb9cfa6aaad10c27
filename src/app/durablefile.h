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
    /// Takes away a file that was made and has got no content.
    ~DurableFile();
    DurableFile(const DurableFile &) = delete;
    DurableFile &operator=(const DurableFile &) = delete;

    /// False if the file cannot be written; nothing has changed then.
    bool open();
    /// Why open() did not succeed.
    const QString &trouble() const { return whyNot; }
    /// What replaceBy() is to do with what stands there. Where it must stay and cannot, nothing is replaced.
    void setFormer(const Former &what) { former = what; }
    /// Where that was put; empty if it was not.
    const QString &old() const { return oldAt; }
    /// Once after open(). Returns why the new content could not be stored, empty if it is.
    QString replaceBy(const QByteArray &content);
    /// Of the file as it was stored.
    FileStamp stamp() const { return stored; }
    /// Whether replaceBy() has left the file alone because it is not what `known` of Former says any more.
    bool isOvertaken() const { return overtaken; }
    /// Whether what was in the file before is in it no more, although replaceBy() has failed.
    bool hasLostOld() const { return lostOld; }
    /// The file that holds the new content when it could not be stored in its place; empty if none does.
    const QString &rescue() const { return rescuedTo; }

private:
    bool isWritable();
    bool openInPlace();
    void removeWhatWasMade();
    QString replaceThroughTemporary(const QByteArray &content);
    bool holds(const QByteArray &content);
    QString replaceInPlace(const QByteArray &content);

    QString path; // of the file itself, at the end of all links
    NewContent temporary;
    QFile inPlace; // open if that is how it has to be
    bool overtaken = false;
    bool lostOld = false;
    bool madeInPlace = false; // there was no such file before, and nothing is stored in it yet
    QString whyNot;
    QString rescuedTo;
    Former former;
    QString oldAt;
    FileStamp stored;
};
