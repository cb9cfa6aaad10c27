#pragma once

#include <QString>

class QSaveFile;

/// Puts a file that was written in its place once every byte of it is on the disk. Returns the reason when
/// that failed: the old file is still there then, untouched, and nothing else is left. Empty on success.
QString commitDurably(QSaveFile &file);
