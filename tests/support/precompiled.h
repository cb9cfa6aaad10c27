#pragma once

// What nearly every test program includes, compiled once. A test still includes what it uses: without this
// header it has to build as well (cmake -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON).

#include <QApplication>
#include <QGraphicsScene>
#include <QGraphicsTextItem>
#include <QGraphicsView>
#include <QMainWindow>
#include <QUndoStack>
#include <QtTest>

#include <algorithm>
#include <memory>
#include <vector>
