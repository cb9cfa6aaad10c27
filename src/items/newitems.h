#pragma once

class QGraphicsScene;

/// Makes the framework polish and index the scene's new items now, which it would else do when the event loop
/// runs.
///
/// For each item that leaves before that it searches its lists of new ones, so that thousands that come and
/// go together would cost the square of their number.
void takeInNewItems(QGraphicsScene &scene);
