#include "story/formats.h"
#include "story/pdfoutline.h"
#include "story/storydocument.h"
#include "story/storyformat.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <cmath>

namespace {

constexpr int dotsPerInch = 300;
constexpr double pointsPerInch = 72;
constexpr double margin = 20;       // millimetres
constexpr double footerPart = 0.04; // of a page
constexpr double footerSize = 9;    // points
constexpr double making = 0.2;      // part of the time that documents take before they are laid out

/// Where the lines of a document come to stand on the paper, in dots of the writer.
struct Pages
{
    QSizeF text; // the part of a page that holds it
    double footer;
};

Pages laidOut(QTextDocument &document, QPdfWriter &writer)
{
    const QSizeF whole = writer.pageLayout().paintRectPixels(dotsPerInch).size();
    Pages pages{QSizeF(whole.width(), std::floor(whole.height() * (1 - footerPart))), 0};
    pages.footer = whole.height() - pages.text.height();
    document.setDocumentMargin(0); // before there is a layout, which would be made anew
    document.documentLayout()->setPaintDevice(&writer);
    document.setPageSize(pages.text);
    return pages;
}

/// Puts the lines of a document down on one page after the other. The layout's own painting takes one more
/// line before the page and one behind it, which its clipping hides from the eye but not from whoever
/// searches.
class PagePainter
{
public:
    PagePainter(QTextDocument &textDocument, const Pages &itsPages)
        : document(textDocument), pages(itsPages), block(textDocument.begin())
    {}

    /// The next one of the document. `shownNumber` is counted from 1 in all.
    void paintNext(QPainter &painter, int shownNumber)
    {
        painter.setPen(Qt::black); // whatever the palette of the program is
        painter.save();
        painter.translate(0, -top);
        painter.setClipRect(QRectF(QPointF(0, top), pages.text));
        top += pages.text.height();
        while (block.isValid() && paintLines(painter)) {
            block = block.next();
            line = 0;
        }
        painter.restore();
        QFont font = document.defaultFont();
        font.setPointSizeF(footerSize);
        painter.setFont(font);
        painter.drawText(QRectF(0, pages.text.height(), pages.text.width(), pages.footer),
                         Qt::AlignHCenter | Qt::AlignBottom, QString::number(shownNumber));
    }

private:
    /// Those of the block that stand above the end of the page; false if some do not.
    bool paintLines(QPainter &painter)
    {
        const QPointF corner = document.documentLayout()->blockBoundingRect(block).topLeft();
        const QTextLayout &lines = *block.layout();
        for (; line < lines.lineCount(); ++line) {
            const QTextLine next = lines.lineAt(line);
            if (corner.y() + next.y() >= top)
                return false;
            next.draw(&painter, corner);
        }
        // Painting a whole block lets its letters go, which painting lines keeps. None of it is within this
        // clip.
        lines.draw(&painter, corner, {}, QRectF(corner - QPointF(0, 2), QSizeF(1, 1)));
        return true;
    }

    QTextDocument &document;
    Pages pages;
    double top = 0; // of the next page, in the document
    QTextBlock block;
    int line = 0; // of the block: the first that is not painted yet
};

void addBookmarks(const QTextDocument &document, const Pages &pages, int firstPage,
                  std::vector<PdfBookmark> &bookmarks)
{
    const QAbstractTextDocumentLayout *layout = document.documentLayout();
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const int level = block.blockFormat().headingLevel();
        if (level == 0)
            continue;
        // A block begins where the one before ends, and its first line may only fit on the next page.
        const double blockTop = layout->blockBoundingRect(block).top();
        const double top = blockTop + block.layout()->lineAt(0).y();
        const int page = int(top / pages.text.height());
        const double onPage = (top - page * pages.text.height()) * pointsPerInch / dotsPerInch;
        const double marginPoints = margin / 25.4 * pointsPerInch;
        QString title = block.text();
        bookmarks.push_back({title.replace(QChar::LineSeparator, QLatin1Char(' ')), level, firstPage + page,
                             onPage + marginPoints});
    }
}

/// With bookmarks and page numbers.
class PdfFormat : public StoryFormat
{
public:
    QString name() const override { return QStringLiteral("pdf"); }
    bool hasPages() const override { return true; }

    void write(const Story &story, const ExportOptions &options, QIODevice &out) const override
    {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QPdfWriter writer(&buffer);
        writer.setResolution(dotsPerInch);
        writer.setPageSize(QPageSize(options.paper));
        writer.setPageMargins(QMarginsF(margin, margin, margin, margin), QPageLayout::Millimeter);
        writer.setTitle(options.name);
        writer.setCreator(QStringLiteral("fablegrid-story"));
        double made = 0;    // of the story
        double painted = 0; // of it, too
        const auto tell = [&] {
            if (options.tell)
                options.tell(making * made + (1 - making) * painted);
        };
        ExportOptions told = options;
        told.tell = [&](double part) {
            made = part;
            tell();
        };
        std::vector<PdfBookmark> bookmarks;
        int pagesBefore = 0;
        {
            QPainter painter(&writer);
            makeDocuments(story, told, [&](std::unique_ptr<QTextDocument> part) {
                const Pages pages = laidOut(*part, writer);
                const int count = part->pageCount();
                const double before = painted;
                PagePainter pagePainter(*part, pages);
                for (int number = 0; number < count; ++number) {
                    if (pagesBefore + number > 0)
                        writer.newPage();
                    pagePainter.paintNext(painter, pagesBefore + number + 1);
                    painted = before + (made - before) * (number + 1) / count;
                    tell();
                }
                addBookmarks(*part, pages, pagesBefore, bookmarks);
                pagesBefore += count;
            });
        }
        const double pageHeight = writer.pageLayout().fullRectPoints().height();
        out.write(withBookmarks(bytes, bookmarks, pageHeight));
    }
};

} // namespace

const StoryFormat &pdfFormat()
{
    static const PdfFormat format;
    return format;
}
