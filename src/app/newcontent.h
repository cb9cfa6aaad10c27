#pragma once

#include "app/former.h"

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
    /// Gives it who may do what with that file, or with new ones if there is no such file.
    void takePropertiesOf(const QString &path);
    void takePropertiesOfNewFiles();
    /// Puts it in the place of that file in the same folder; 0, or what the system says of it.
    int replace(const QString &path);
    /// The same where it matters what stood there. If that is put by, without being read, `old` is where.
    /// Another program may come in between and loses nothing, but where the system or the disk knows no
    /// exchange of names.
    int replace(const QString &path, const Former &former, QString &old);
    /// Lets it stay under the name that it has, and returns that.
    QString stay();
    /// Gives it that name in the same folder if nobody has it, not even a link. If it is taken another one
    /// can be tried.
    Naming takeFreeName(const QString &path);
    /// What tells it from any other file, for as long as nobody changes it; when it has got its name. Of no
    /// file if somebody has changed it already.
    FileStamp stamp() const;
    /// Why no name could be given to it.
    const QString &trouble() const { return whyNot; }

private:
    QString present();
    int replaceWithoutExchange(const QString &name, const QString &path, const Former &former, QString &old);
    void isInPlace(const QString &path);

    QTemporaryFile file;
    FileStamp written;
    QString whyNot;
};
