#pragma once

#include <QFont>
#include <QTextLayout>

#include <array>
#include <optional>
#include <vector>

class QStringView;

/// Counts the lines of a wrapped plain text without wrapping it. How much of a line a letter takes depends on
/// its two neighbours only: that is asked of the text engine once for each three letters, then added up, and
/// lines are filled as the engine fills them. What might be otherwise has no answer: other scripts, tabs,
/// words longer than a line, rare sequences of signs, a font without a letter spacing (only with one does the
/// engine never draw two letters as one). Owns the advances that it has asked for. Made and asked by
/// TextMeasure, for each kind of text.
class LineCounter
{
public:
    /// A line's width in units of the item that shows the text.
    LineCounter(const QFont &font, double lineWidth);

    /// Null where only the text engine can tell.
    std::optional<int> linesOf(QStringView text);

private:
    enum class Kind : quint8 {
        other,
        letter,
        digit,
        quote,
        stop,
        mark,
        opening,
        closing,
        hyphen,
        slash,
        dash,
        dots,
        space
    };

    /// Between two signs: a line may end there, may not, or nobody but the engine knows.
    enum class Gap : quint8 { breaks, holds, unknown };

    /// Sums in units of the engine, 64 to a pixel.
    struct Line
    {
        int width = 0;    // of what the line holds, with the spaces between
        int spaces = 0;   // behind it
        int overhang = 0; // of the last letter over its advance, where the engine looks at it
    };

    /// What three letters have the middle one take.
    struct Advance
    {
        quint32 letters = 0; // a free place where it is 0
        int width = 0;
    };

    static Kind kindOf(char16_t sign);
    static Gap gapBetween(Kind before, Kind last, Kind next);
    static quint32 codeOf(char16_t sign);
    static quint32 lettersAt(QStringView text, qsizetype at);

    std::optional<int> linesOfParagraph(QStringView text);
    bool readGaps(QStringView text);
    bool readWidths(QStringView text);
    void askFor(QStringView text);
    QStringView unknownPart(QStringView text);
    Advance &placeOf(quint32 letters);
    bool isFull() const;
    void grow();
    int overhangOf(char16_t sign);
    /// False where the line is full.
    bool takes(Line &line, int word, char16_t lastSign);

    static constexpr std::size_t mostPlaces = 1U << 15U;

    QTextLayout layout;
    const int room;
    const int largestOverhang;
    double usualHeight = 0; // of a line
    std::vector<Advance> advances;
    std::size_t advancesKnown = 0;
    std::array<int, 0x200> overhangs;
    std::vector<Gap> gaps;   // of the paragraph that is being counted, behind each letter
    std::vector<int> widths; // of its letters
};
