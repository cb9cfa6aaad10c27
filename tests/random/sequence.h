#pragma once

#include <QString>

class Choices;
class MainWindow;

/// Lets random hands loose on a window of its own and checks it after every step, at the end through the
/// whole history as well. Gives back what went wrong, with the steps that led there; empty if nothing did.
///
/// Needs an application and a home folder that may be written into.
QString runSequence(Choices &choices, int steps);
/// The same on a window that is shown and may have been used before: it starts anew with one empty tab.
QString runSequence(MainWindow &window, Choices &choices, int steps);
/// A window for that, small, because painting is what takes the time.
void showForSequences(MainWindow &window);
