#pragma once

#include <QString>
#include <QStringList>

#include <vector>

class StoryFormat;

/// All formats that the program knows.
namespace StoryFormats {

const std::vector<const StoryFormat *> &all();
/// Null if there is none of that name.
const StoryFormat *named(const QString &name);
/// By what the file's name ends in; null if that says nothing.
const StoryFormat *forFile(const QString &path);
QStringList names();

} // namespace StoryFormats
