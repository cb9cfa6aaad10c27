#pragma once

#include <QByteArray>

class Choices;
class MainWindow;

// Whole documents as bytes, taken apart without the program's own reader.

/// What a Save would write now.
QByteArray documentOf(const MainWindow &window);
/// The tabs in their order, the records of each by their index; all bytes as they are if it is no document.
QByteArray sortedDocument(const QByteArray &document);
/// What a document says once it has been opened: in a tab where no event ends the story, the first one does.
QByteArray asOpened(const QByteArray &document);
/// The document with all connections left out.
QByteArray withoutConnections(const QByteArray &document);
/// A document with unusual but sound contents: holes in the numbering, far places, odd texts.
QByteArray foreignDocument(Choices &choices);
