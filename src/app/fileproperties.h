#pragma once

class QFileDevice;
class QString;

/// Who may do what with a file, and what else is noted about it, handed on to the file that takes its place.
namespace FileProperties {

/// Gives the open file what the one at that path has: owner, permissions, access list and attributes, as far
/// as the system lets us. Where it does not, fewer may read the new file, never more.
void takeOver(const QString &path, QFileDevice &file);
/// Gives the open file what the system gives to one that is made in that folder for everybody.
void beNew(QFileDevice &file, const QString &folder);

} // namespace FileProperties
