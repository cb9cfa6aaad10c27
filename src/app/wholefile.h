#pragma once

#include "app/filestamp.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

/// A file that is read from its first byte to its last before anybody looks at it: a disk that fails half-way
/// then costs nothing.
class WholeFile
{
    Q_DECLARE_TR_FUNCTIONS(WholeFile)

public:
    /// Reads a regular file; a pipe would let the program wait for whoever writes into it.
    explicit WholeFile(const QString &path);

    const QByteArray &content() const { return bytes; }
    /// Of the file as it was when the reading began.
    const FileStamp &stamp() const { return before; }
    /// Why it could not be read, in words for the user; empty if it was.
    const QString &trouble() const { return whyNot; }

private:
    QString read(const QString &path);

    QByteArray bytes;
    FileStamp before;
    QString whyNot;
};
