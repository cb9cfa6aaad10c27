#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

/// A bookmark of a PDF.
struct PdfBookmark
{
    QString title;
    int level;  // 1 is the highest; it may be more than one below the one before
    int page;   // counted from 0
    double top; // in points from the top of the page
};

/// The same PDF with these bookmarks, which Qt's writer cannot make. They are appended, as the format lets
/// whoever changes a file do. `pdf` is of Qt's writer; whatever else is given back as it is.
QByteArray withBookmarks(const QByteArray &pdf, const std::vector<PdfBookmark> &bookmarks, double pageHeight);
