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
    /// Gives it who may do what with that file, or with new ones if there is no such file.
    void takePropertiesOf(const QString &path);
    void takePropertiesOfNewFiles();
    /// Puts it in the place of that file in the same folder; 0, or what the system says of it.
    int replace(const QString &path);
    /// Lets it stay under the name that it has, and returns that.
    QString stay();
    /// Gives it that name in the same folder if nobody has it, not even a link. If it is taken another one
    /// can be tried.
    Naming takeFreeName(const QString &path);
    /// Why no name could be given to it.
    const QString &trouble() const { return whyNot; }

private:
    QString present();

    QTemporaryFile file;
    QString whyNot;
};
