#pragma once

class QString;

/// How names within one folder change hands: each at once, or not at all. All return 0, or what the system
/// says of it.
namespace FileMoves {

/// Whatever stands under the new name is gone then.
int over(const QString &from, const QString &to);
/// EEXIST if somebody has the new name, be it a link.
int toFreeName(const QString &from, const QString &to);
/// Each gets the other's name; see isUnknownHere().
int exchange(const QString &one, const QString &other);
/// Gives the file a second name, which nobody has.
int addName(const QString &file, const QString &name);
/// Whether that is what is said where the system or the disk does not know such a move; some containers
/// forbid what they do not know.
bool isUnknownHere(int error);

} // namespace FileMoves
