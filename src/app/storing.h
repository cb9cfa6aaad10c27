#pragma once

#include <QString>

class QByteArray;
class QFileDevice;

/// What Qt's files leave open between a write and the certainty that every byte is on the disk.
namespace Storing {

/// What the system calls that error number.
QString reason(int error);
/// What the file says of its last failure, or else what the system said.
QString reasonOf(const QFileDevice &file, int systemError);
/// Writes it all; returns why that failed, empty if it did not.
QString write(QFileDevice &file, const QByteArray &content);
/// Waits until what was written to that handle is on the disk; returns why that failed, empty if it did not.
QString putOnDisk(int handle);
/// Waits until the names in the folder of that file are on the disk, as far as the system lets us.
void putNamesOnDisk(const QString &path);

} // namespace Storing
