#pragma once

#include <QString>

class Console;
class QCommandLineParser;

/// One of the things that the program does, by the word that stands first on its command line.
class StoryCommand
{
public:
    StoryCommand() = default;
    virtual ~StoryCommand() = default;
    StoryCommand(const StoryCommand &) = delete;
    StoryCommand &operator=(const StoryCommand &) = delete;

    virtual QString name() const = 0;
    /// What it is for, in half a line.
    virtual QString summary() const = 0;
    /// What follows the name, such as "FILE...".
    virtual QString usage() const = 0;
    /// A whole command line.
    virtual QString example() const = 0;
    virtual void addOptions(QCommandLineParser &) const {}

    /// Returns an ExitCode. The parser knows the options already.
    virtual int run(const QCommandLineParser &parser, Console &console) const = 0;
};

// Each is made in its own file, src/story/<name>command.cpp.
const StoryCommand &showCommand();
const StoryCommand &exportCommand();
const StoryCommand &pictureCommand();
const StoryCommand &checkCommand();
const StoryCommand &importCommand();
const StoryCommand &diffCommand();
const StoryCommand &copiesCommand();
