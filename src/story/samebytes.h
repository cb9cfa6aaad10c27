#pragma once

#include <QByteArrayView>
#include <QIODevice>

/// A device that only says whether what is written onto it is what stands somewhere already, so that a large
/// file need not be in the memory twice.
class SameBytes : public QIODevice
{
public:
    /// `wanted` must outlive this object, which is open.
    explicit SameBytes(QByteArrayView wanted);

    /// Whether all of it was written, and nothing else.
    bool isSame() const { return !differs && rest.isEmpty(); }
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 most) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    QByteArrayView rest; // not written yet
    bool differs = false;
};
