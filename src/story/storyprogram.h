#pragma once

#include <QStringList>

#include <vector>

class Console;
class StoryCommand;

/// The program behind its main function.
namespace StoryProgram {

const std::vector<const StoryCommand *> &commands();

/// Runs the command that `arguments`, which are without the program's name, begin with. Needs an application.
int run(const QStringList &arguments, Console &console);

} // namespace StoryProgram
