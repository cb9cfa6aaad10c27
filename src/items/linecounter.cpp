#include "items/linecounter.h"

#include <QFontMetricsF>
#include <QStringView>

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace {

constexpr quint32 none = 0; // stands for what is before the first letter and behind the last one
constexpr quint32 letterBits = 9;
constexpr quint32 threeLetters = (1U << (3 * letterBits)) - 1;
constexpr int unknownOverhang = -1;

/// Cut off, as the engine does it.
int toUnits(double pixels) { return int(pixels * 64); }

} // namespace

LineCounter::LineCounter(const QFont &font, double lineWidth)
    : room(toUnits(lineWidth)), largestOverhang(std::max(0, -toUnits(QFontMetricsF(font).minRightBearing())))
{
    layout.setFont(font);
    overhangs.fill(unknownOverhang);
}

std::optional<int> LineCounter::linesOf(QStringView text)
{
    if (layout.font().letterSpacing() == 0)
        return std::nullopt;
    int lines = 0;
    for (qsizetype from = 0, end = 0; end != -1; from = end + 1) {
        end = text.indexOf(u'\n', from);
        const std::optional<int> more = linesOfParagraph(text.mid(from, end == -1 ? -1 : end - from));
        if (!more)
            return std::nullopt;
        lines += *more;
    }
    return lines;
}

std::optional<int> LineCounter::linesOfParagraph(QStringView text)
{
    constexpr qsizetype longest = 4000; // the engine splits longer ones, wherever that is
    if (text.isEmpty())
        return 1;
    if (text.size() > longest || !readGaps(text) || !readWidths(text))
        return std::nullopt;
    int lines = 1;
    Line line;
    int word = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const int width = widths[std::size_t(i)];
        const bool isSpace = text[i] == u' ';
        (isSpace ? line.spaces : word) += width;
        if (isSpace || gaps[std::size_t(i)] == Gap::holds)
            continue;
        if (!takes(line, word, text[i].unicode())) {
            ++lines;
            line = Line();
            if (!takes(line, word, text[i].unicode()))
                return std::nullopt;
        }
        word = 0;
    }
    return line.spaces <= room ? std::optional(lines) : std::nullopt;
}

/// False where only the engine knows where lines may end, or in which direction the paragraph is written.
bool LineCounter::readGaps(QStringView text)
{
    gaps.resize(std::size_t(text.size()));
    Kind before = Kind::space; // the last one that is no space; none may stand first
    Kind kind = kindOf(text.front().unicode());
    if (kind == Kind::space)
        return false;
    bool hasLetter = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const Kind next = i + 1 < text.size() ? kindOf(text[i + 1].unicode()) : Kind::space;
        const Gap gap = gapBetween(before, kind, next);
        if (kind == Kind::other || next == Kind::other || gap == Gap::unknown)
            return false;
        gaps[std::size_t(i)] = gap;
        hasLetter = hasLetter || kind == Kind::letter;
        if (kind != Kind::space)
            before = kind;
        kind = next;
    }
    return hasLetter;
}

bool LineCounter::readWidths(QStringView text)
{
    grow();
    widths.resize(std::size_t(text.size()));
    bool hasAsked = false;
    quint32 letters = codeOf(text.front().unicode());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const quint32 after = i + 1 < text.size() ? codeOf(text[i + 1].unicode()) : none;
        letters = (letters << letterBits | after) & threeLetters;
        const Advance *known = &placeOf(letters);
        if (known->letters == 0 && !std::exchange(hasAsked, true)) {
            askFor(text);
            known = &placeOf(letters);
        }
        if (known->letters == 0)
            return false;
        widths[std::size_t(i)] = known->width;
    }
    return true;
}

/// Whatever is not known of this paragraph, as far as there is room. A letter that another font lends may be
/// higher than the rest, and make its line higher.
void LineCounter::askFor(QStringView text)
{
    const auto layOut = [this](const QString &line) {
        layout.setText(line);
        layout.beginLayout();
        const QTextLine laidOut = layout.createLine();
        layout.endLayout();
        return laidOut;
    };
    if (usualHeight == 0)
        usualHeight = layOut(QStringLiteral("x")).height();
    if (isFull())
        return;
    const QStringView part = unknownPart(text);
    const qsizetype start = part.data() - text.data();
    const QTextLine line = layOut(part.toString());
    if (line.height() != usualHeight)
        return;
    for (qsizetype i = start; i < start + part.size() && !isFull(); ++i) {
        const quint32 letters = lettersAt(text, i);
        const bool isAtCut = (i == start && i > 0) || (i + 1 == start + part.size() && i + 1 < text.size());
        if (isAtCut || placeOf(letters).letters != 0)
            continue;
        const auto at = int(i - start);
        placeOf(letters) = {letters, toUnits(line.cursorToX(at + 1) - line.cursorToX(at))};
        ++advancesKnown;
        grow();
    }
}

/// From the first to the last letters that are not known, and a little more: digits and quotes are written as
/// the letters beside them are.
QStringView LineCounter::unknownPart(QStringView text)
{
    constexpr qsizetype more = 8;
    const auto isUnknown = [this, text](qsizetype at) { return placeOf(lettersAt(text, at)).letters == 0; };
    qsizetype first = 0;
    while (!isUnknown(first))
        ++first;
    qsizetype last = text.size() - 1;
    while (!isUnknown(last))
        --last;
    first = std::max(first - more, qsizetype(0));
    const QStringView part = text.mid(first, last + 1 + more - first);
    const bool hasLetter = std::any_of(part.begin(), part.end(),
                                       [](QChar sign) { return kindOf(sign.unicode()) == Kind::letter; });
    return hasLetter ? part : text;
}

/// As the engine does: it asks for the overhang of a word's last letter only where that could matter.
bool LineCounter::takes(Line &line, int word, char16_t lastSign)
{
    const int width = line.width + line.spaces + word;
    const int beyond = width + line.overhang + largestOverhang - room;
    if (beyond > 0)
        line.overhang = overhangOf(lastSign);
    const int missing = width + line.overhang - room;
    if (missing > 0)
        return false;
    line.width = width;
    line.spaces = 0;
    return true;
}

LineCounter::Kind LineCounter::kindOf(char16_t sign)
{
    static const std::array<Kind, 0x180> kinds = [] {
        std::array<Kind, 0x180> all{};
        for (std::size_t code = 0; code < all.size(); ++code) {
            const QChar letter(static_cast<char16_t>(code));
            if (letter.isDigit() && code < 0x80)
                all.at(code) = Kind::digit;
            else if (letter.isLetter() && code != 0xaa && code != 0xba && code != 0xb5)
                all.at(code) = Kind::letter;
        }
        for (const char16_t quote : {u'"', u'\''})
            all.at(quote) = Kind::quote;
        for (const char16_t stop : {u'.', u',', u':', u';'})
            all.at(stop) = Kind::stop;
        all.at(u'!') = all.at(u'?') = Kind::mark;
        all.at(u'(') = Kind::opening;
        all.at(u')') = Kind::closing;
        all.at(u'-') = Kind::hyphen;
        all.at(u'/') = Kind::slash;
        all.at(u' ') = Kind::space;
        return all;
    }();
    if (sign < kinds.size())
        return kinds.at(sign);
    switch (sign) {
    case 0x2013:
    case 0x2014:
        return Kind::dash;
    case 0x2018:
    case 0x2019:
    case 0x201c:
    case 0x201d:
        return Kind::quote;
    case 0x2026:
        return Kind::dots;
    default:
        return Kind::other;
    }
}

LineCounter::Gap LineCounter::gapBetween(Kind before, Kind last, Kind next)
{
    const auto isOf = [](Kind kind, std::initializer_list<Kind> kinds) {
        return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
    };
    if (last == Kind::letter && next == Kind::letter)
        return Gap::holds; // what is asked most, first
    if (next == Kind::space)
        return Gap::breaks; // the word ends here, the line behind the space
    if (last == Kind::space)
        return isOf(next, {Kind::stop, Kind::mark, Kind::closing, Kind::slash}) ? Gap::unknown : Gap::breaks;
    if (isOf(last, {Kind::hyphen, Kind::slash}))
        return next == Kind::letter ? Gap::breaks : Gap::unknown;
    const bool beginsWord = isOf(next, {Kind::letter, Kind::digit});
    // Behind "(12)" the engine would end a line within "1,500", and before a digit that begins no number.
    if ((last == Kind::digit && next == Kind::closing) ||
        (last == Kind::stop && next == Kind::digit && before != Kind::digit))
        return Gap::unknown;
    const bool holds =
        (beginsWord && isOf(last, {Kind::letter, Kind::digit, Kind::quote, Kind::stop, Kind::opening})) ||
        isOf(next, {Kind::quote, Kind::stop, Kind::mark, Kind::closing}) ||
        (isOf(next, {Kind::hyphen, Kind::opening}) && isOf(last, {Kind::letter, Kind::digit})) ||
        (next == Kind::slash && last == Kind::letter) ||
        (next == Kind::dots && isOf(last, {Kind::letter, Kind::digit, Kind::mark, Kind::quote}));
    return holds ? Gap::holds : Gap::unknown;
}

quint32 LineCounter::codeOf(char16_t sign)
{
    constexpr quint32 firstOfOthers = 0x2010;
    return sign < 0x180 ? sign : sign - firstOfOthers + 0x180U;
}

/// The one there, between its neighbours.
quint32 LineCounter::lettersAt(QStringView text, qsizetype at)
{
    const quint32 before = at > 0 ? codeOf(text[at - 1].unicode()) : none;
    const quint32 after = at + 1 < text.size() ? codeOf(text[at + 1].unicode()) : none;
    return ((before << letterBits | codeOf(text[at].unicode())) << letterBits) | after;
}

LineCounter::Advance &LineCounter::placeOf(quint32 letters)
{
    const std::size_t last = advances.size() - 1; // there are as many as a power of two
    std::size_t at = (letters * 0x9e3779b1U) >> 12U;
    while (advances[at & last].letters != 0 && advances[at & last].letters != letters)
        ++at;
    return advances[at & last];
}

/// There is always a free place, so that whoever looks for letters comes to an end.
bool LineCounter::isFull() const { return 4 * advancesKnown >= 3 * advances.size(); }

/// As long as that is allowed.
void LineCounter::grow()
{
    constexpr std::size_t fewest = 1U << 10U;
    if (!isFull() || advances.size() == mostPlaces)
        return;
    const std::vector<Advance> former =
        std::exchange(advances, std::vector<Advance>(std::max(fewest, 2 * advances.size())));
    for (const Advance &known : former) {
        if (known.letters != 0)
            placeOf(known.letters) = known;
    }
}

int LineCounter::overhangOf(char16_t sign)
{
    int &overhang = overhangs.at(codeOf(sign));
    if (overhang == unknownOverhang)
        overhang = std::max(0, -toUnits(QFontMetricsF(layout.font()).rightBearing(QChar(sign))));
    return overhang;
}
