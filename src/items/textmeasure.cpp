#include "items/textmeasure.h"

#include "items/linecounter.h"

#include <QCoreApplication>
#include <QFont>
#include <QHash>
#include <QString>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

namespace {

int pauses = 0; // that live

/// A document for all texts of one kind, and what spares asking it: lines that can be counted, and what it
/// said of short texts, since many titles and untouched descriptions are the same.
class Ruler
{
public:
    Ruler(const QFont &font, double textWidth, double margin)
        : counter(font, textWidth - 2 * margin), countsLines(textWidth < 0 || textWidth > 2 * margin)
    {
        layout.setFont(font);
        document.setUndoRedoEnabled(false);
        document.setDefaultFont(font);
        document.setDocumentMargin(margin);
        document.setTextWidth(textWidth);
        oneLine = laidOut(QStringLiteral("x")).height();
        furtherLine = laidOut(QStringLiteral("x\nx")).height() - oneLine;
    }

    bool isFor(const QFont &font, double textWidth, double margin) const
    {
        return document.textWidth() == textWidth && document.documentMargin() == margin &&
               document.defaultFont() == font;
    }

    QSizeF sizeOf(const QString &text)
    {
        const bool isShort = text.size() <= shortest;
        if (isShort && known.contains(text))
            return known.value(text);
        const QSizeF size = counted(text).value_or(QSizeF());
        const bool isSure = size.isValid() && !isCheckDue();
        const QSizeF sure = isSure ? size : laidOut(text);
        if (size.isValid() && size != sure)
            countsLines = false; // a font with rules that nobody has thought of
        if (isShort && known.size() < mostKnown)
            known.insert(text, sure);
        return sure;
    }

private:
    /// Null for what the document has to tell.
    std::optional<QSizeF> counted(const QString &text)
    {
        if (!countsLines)
            return std::nullopt;
        std::optional<QSizeF> size;
        if (document.textWidth() < 0) {
            size = sizeOfLine(text);
        } else if (const std::optional<int> lines = counter.linesOf(text)) {
            size = QSizeF(document.textWidth(), oneLine + (*lines - 1) * furtherLine);
        }
        timesCounted += size ? 1U : 0U;
        return size;
    }

    /// A line that is not wrapped takes what its layout says; a document takes three times as long to say it.
    std::optional<QSizeF> sizeOfLine(const QString &text)
    {
        const bool isPlain = std::all_of(text.begin(), text.end(), [](QChar sign) {
            return sign >= u' ' && sign <= QChar(0x17f) && sign != u'\x7f' &&
                   (sign < u'\x80' || sign > u'\xa0');
        });
        if (text.isEmpty() || !isPlain)
            return std::nullopt;
        layout.setText(text);
        layout.beginLayout();
        const QTextLine line = layout.createLine();
        layout.endLayout();
        const double margins = 2 * document.documentMargin();
        return QSizeF(line.naturalTextWidth() + margins, line.height() + margins);
    }

    /// For the first, the second, the fourth and so on.
    bool isCheckDue() const { return (timesCounted & (timesCounted - 1)) == 0; }

    QSizeF laidOut(const QString &text)
    {
        // In one step: QTextDocument::setPlainText() lays out the emptied document as well.
        QTextCursor all(&document);
        all.beginEditBlock();
        all.select(QTextCursor::Document);
        all.insertText(text);
        all.endEditBlock();
        return {std::max(document.textWidth(), document.idealWidth()), document.size().height()};
    }

    static constexpr qsizetype shortest = 40; // characters
    static constexpr qsizetype mostKnown = 200;

    QTextDocument document;
    LineCounter counter; // of wrapped texts
    QTextLayout layout;  // of others
    bool countsLines;
    unsigned timesCounted = 0;
    double oneLine = 0;
    double furtherLine = 0;
    QHash<QString, QSizeF> known;
};

Ruler &rulerFor(const QFont &font, double textWidth, double margin)
{
    static std::vector<std::unique_ptr<Ruler>> rulers; // a handful; they go with the application, as fonts do
    for (const std::unique_ptr<Ruler> &ruler : rulers) {
        if (ruler->isFor(font, textWidth, margin))
            return *ruler;
    }
    if (rulers.empty())
        qAddPostRoutine([] { rulers.clear(); });
    rulers.push_back(std::make_unique<Ruler>(font, textWidth, margin));
    return *rulers.back();
}

} // namespace

bool TextMeasure::isHeldUnchanged(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar unit) {
        const char16_t code = unit.unicode();
        return code == u'\n' || code == u'\t' || (code >= 0x20 && code < 0x7f) ||
               (code > QChar::Nbsp && code < 0x2000) || (code > 0x206f && code < 0xd800);
    });
}

QSizeF TextMeasure::documentSize(const QString &text, const QFont &font, double textWidth, double margin)
{
    return pauses > 0 ? QSizeF(0, 0) : rulerFor(font, textWidth, margin).sizeOf(text);
}

TextMeasure::Pause::Pause() { ++pauses; }

TextMeasure::Pause::~Pause() { --pauses; }
