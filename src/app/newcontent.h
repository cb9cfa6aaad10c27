#pragma once

#include <QString>
#include <QTemporaryFile>

/// The content that a file is to have, complete and on the disk before it gets the file's name.
///
/// It stands under a name of its own in the file's folder until then, and goes with this object if no name is
/// given to it. Nobody but the user may read it, unless somebody says otherwise.
class NewContent
{
public:
    enum class Naming { done, taken, failed };

    /// `path` is that of the file.
    explicit NewContent(const QString &path);

    /// False if there can be no file beside that one; errno tells why.
    bool open();
    /// Once after open(). Returns why the content could not be stored, empty if it is.
    QString write(const QByteArray &content);
    /// Gives it that name in the same folder if nobody has it, not even a link. If it is taken another one
    /// can be tried.
    Naming takeFreeName(const QString &path);
    /// Why no name could be given to it.
    const QString &trouble() const { return whyNot; }

private:
    QTemporaryFile file;
    QString whyNot;
};
