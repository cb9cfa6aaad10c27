#include "items/textmeasure.h"

#include <QCoreApplication>
#include <QFont>
#include <QHash>
#include <QString>
#include <QTextDocument>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

int pauses = 0; // that live

/// A document for all texts of one kind, and what it said of short ones: many titles and untouched
/// descriptions are the same.
struct Ruler
{
    Ruler(const QFont &font, double textWidth, double margin)
    {
        document.setUndoRedoEnabled(false);
        document.setDefaultFont(font);
        document.setDocumentMargin(margin);
        document.setTextWidth(textWidth);
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
        document.setPlainText(text);
        const QSizeF size(std::max(document.textWidth(), document.idealWidth()), document.size().height());
        if (isShort && known.size() < mostKnown)
            known.insert(text, size);
        return size;
    }

    static constexpr qsizetype shortest = 40; // characters
    static constexpr qsizetype mostKnown = 200;

    QTextDocument document;
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
