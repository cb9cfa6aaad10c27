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

#include <cmath>

namespace {

constexpr int dotsPerInch = 300;
constexpr double pointsPerInch = 72;
constexpr double margin = 20;       // millimetres
constexpr double footerPart = 0.04; // of a page
constexpr double footerSize = 9;    // points

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
    document.documentLayout()->setPaintDevice(&writer);
    document.setDocumentMargin(0);
    document.setPageSize(pages.text);
    return pages;
}

void paintPage(QPainter &painter, QTextDocument &document, const Pages &pages, int number)
{
    const QRectF shown(QPointF(0, number * pages.text.height()), pages.text);
    painter.save();
    painter.translate(0, -shown.top());
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = shown;
    context.palette.setColor(QPalette::Text, Qt::black); // whatever the palette of the program is
    painter.setClipRect(shown);
    document.documentLayout()->draw(&painter, context);
    painter.restore();
    QFont font = document.defaultFont();
    font.setPointSizeF(footerSize);
    painter.setFont(font);
    painter.drawText(QRectF(0, pages.text.height(), pages.text.width(), pages.footer),
                     Qt::AlignHCenter | Qt::AlignBottom, QString::number(number + 1));
}

std::vector<PdfBookmark> bookmarksOf(const QTextDocument &document, const Pages &pages)
{
    std::vector<PdfBookmark> bookmarks;
    const QAbstractTextDocumentLayout *layout = document.documentLayout();
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const int level = block.blockFormat().headingLevel();
        if (level == 0)
            continue;
        const double top = layout->blockBoundingRect(block).top();
        const int page = int(top / pages.text.height());
        const double onPage = (top - page * pages.text.height()) * pointsPerInch / dotsPerInch;
        const double marginPoints = margin / 25.4 * pointsPerInch;
        QString title = block.text();
        bookmarks.push_back(
            {title.replace(QChar::LineSeparator, QLatin1Char(' ')), level, page, onPage + marginPoints});
    }
    return bookmarks;
}

/// With bookmarks and page numbers.
class PdfFormat : public StoryFormat
{
public:
    QString name() const override { return QStringLiteral("pdf"); }

    void write(const Story &story, const ExportOptions &options, QIODevice &out) const override
    {
        const auto document = documentOf(story, options);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QPdfWriter writer(&buffer);
        writer.setResolution(dotsPerInch);
        writer.setPageSize(QPageSize(options.paper));
        writer.setPageMargins(QMarginsF(margin, margin, margin, margin), QPageLayout::Millimeter);
        writer.setTitle(options.name);
        writer.setCreator(QStringLiteral("fablegrid-story"));
        const Pages pages = laidOut(*document, writer);
        {
            QPainter painter(&writer);
            const int count = document->pageCount();
            for (int number = 0; number < count; ++number) {
                if (number > 0)
                    writer.newPage();
                paintPage(painter, *document, pages, number);
                options.tell((number + 1.0) / count);
            }
        }
        const double pageHeight = writer.pageLayout().fullRectPoints().height();
        out.write(withBookmarks(bytes, bookmarksOf(*document, pages), pageHeight));
    }
};

} // namespace

const StoryFormat &pdfFormat()
{
    static const PdfFormat format;
    return format;
}
