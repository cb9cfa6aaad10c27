#pragma once

#include <QByteArray>
#include <QIODevice>

#include <vector>

/// Packs files into a zip archive, as document formats need it: few files, known names, no time. Qt keeps its
/// own to itself.
class ZipWriter
{
public:
    /// `target` must be open and outlive this object.
    explicit ZipWriter(QIODevice &target) : out(target) {}

    enum class Packing { stored, deflated };

    /// The name is ASCII.
    void add(const QByteArray &name, const QByteArray &content, Packing packing);
    /// Once, after the last file.
    void finish();

private:
    struct Entry
    {
        QByteArray name;
        QByteArray common; // what both headers of a file hold
        quint32 offset;
    };

    QIODevice &out;
    std::vector<Entry> entries;
    quint32 written = 0;
};
