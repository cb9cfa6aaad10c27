#pragma once

#include <QString>

class Node;
class QDataStream;

/// What the log is told of a damaged file beside the counts of `Damage`: once for all of its tabs, however
/// many of them are damaged. What can only be counted is told as this object goes.
class DamageLog
{
public:
    /// `file` is how the log calls it.
    explicit DamageLog(const QString &file) : name(file) {}
    /// Of the file that the stream reads; it has no name if that is none.
    explicit DamageLog(const QDataStream &stream);
    ~DamageLog();
    DamageLog(const DamageLog &) = delete;
    DamageLog &operator=(const DamageLog &) = delete;

    const QString &fileName() const { return name; }
    /// Of a connection that would close a cycle: the first ones are named, the others counted.
    void refused(const Node *downstream, const Node *upstream);
    /// Of a coordinate that is no finite number, in the record of that index: as above.
    void misplaced(int index);
    /// Of so many events that had no index of their own.
    void numberedAnew(int count) { numbered += count; }

private:
    void tellCounts() const;

    QString name;
    int refusals = 0;
    int misplacements = 0;
    int numbered = 0;
};
