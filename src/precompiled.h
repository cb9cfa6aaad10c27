#pragma once

// What takes longest to read of what the sources include; each of them includes what it uses all the same.

#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsTextItem>
#include <QGraphicsView>
#include <QMainWindow>
#include <QPainter>
#include <QTextDocument>
#include <QUndoStack>

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>
