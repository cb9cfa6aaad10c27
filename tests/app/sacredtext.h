#pragma once

#include "app/windowsupport.h"
#include "items/stnodename.h"

#include <algorithm>

// Texts that are easily spoilt, and short ways to compare them unit for unit.

/// As failOnWarningsOfTheProgram(), except for what Qt says of fonts that lack a script, once for each.
inline void failOnWarningsButOfFonts()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!%1$|\\s*OpenType support missing for )")
                                                .arg(QRegularExpression::escape(platformLine))));
}

/// A text and what of it a text document holds.
struct SacredText
{
    const char *name;
    QString given;
    QString held;

    SacredText(const char *rowName, const QString &text) : name(rowName), given(text), held(text) {}
    SacredText(const char *rowName, const QString &text, const QString &inDocument)
        : name(rowName), given(text), held(inDocument)
    {}
};

inline QString unit(char16_t code) { return {QChar(code)}; }

/// The units that no text document holds as they are: each becomes the end of a paragraph, a line feed.
inline bool endsParagraph(char16_t code)
{
    return code == u'\n' || code == u'\r' || code == 0x2029 || code == 0xfdd0 || code == 0xfdd1;
}

/// Every unit that a document holds as it is, in falling order, lest surrogates meet as pairs.
inline QString allHeldUnits()
{
    QString text;
    for (int code = 0xffff; code >= 0; --code) {
        if (!endsParagraph(char16_t(code)))
            text += QChar(char16_t(code));
    }
    return text;
}

/// That many characters in words of changing length; Qt takes long over the lines of one endless word.
inline QString longText(int length)
{
    QString text;
    for (int i = 0; text.size() < length; ++i)
        text += QString::number(i * i) + QLatin1Char(' ');
    return text.left(length);
}

/// Texts that come through unchanged.
inline std::vector<SacredText> heldTexts()
{
    const QString zwj = unit(0x200d);
    const QString family = QStringLiteral("\U0001F468") + zwj + QStringLiteral("\U0001F469") + zwj +
                           QStringLiteral("\U0001F467");
    return {
        {"empty", QString()},
        {"spaces at both ends", QStringLiteral("  a  b  ")},
        {"emoji", QStringLiteral("a\U0001F600b\U0001F44D\U0001F3FDc\u2764\ufe0fd1\ufe0f\u20e3")},
        {"emoji with joiners", family + QLatin1Char('x') + family},
        {"flags", QStringLiteral("\U0001F1EF\U0001F1F5\U0001F1E7\U0001F1F7\U0001F3F4\U000E0067\U000E007F")},
        {"right to left", QStringLiteral("\u05e9\u05dc\u05d5\u05dd, abc 12 \u0645\u0631\u062d\u0628\u0627")},
        {"direction marks", QStringLiteral("\u202b\u05d0\u202ca\u200e\u200fb\u2067c\u2069\u061c")},
        {"combining marks", QStringLiteral("e\u0301\u00e9 A\u030a\u00c5\u212b") + QString(60, QChar(0x0323)) +
                                QStringLiteral("\u0301o")},
        {"marks that stand first", QStringLiteral("\u0301\u0308a")},
        {"lone high surrogates", unit(0xd83d) + u'a' + unit(0xdbff) + unit(0xd800)},
        {"lone low surrogates", unit(0xde00) + u'a' + unit(0xdfff) + unit(0xdc00)},
        {"surrogates the wrong way round", u'a' + unit(0xde00) + unit(0xd83d) + u'b'},
        {"NUL", u'a' + unit(0) + u'b' + unit(0) + unit(0)},
        {"nothing but NUL", unit(0)},
        {"control characters", QStringLiteral("\x01\x08\x1b\x1f\x7f\u0080\u0085\u009f")},
        {"tab, form feed, vertical tab", QStringLiteral("\ta\tb\fc\vd\t")},
        {"line feeds", QStringLiteral("\n\na\nb\n\n")},
        {"line separators", QStringLiteral("\u2028a\u2028\u2028b\nc\u2028")},
        {"no-break spaces", QStringLiteral("\u00a0a\u00a0b c\u00a0\u202f\u2007")},
        {"all but the placeholder", QStringLiteral("Enter\u00a0description")},
        {"spaces without width", QStringLiteral("\u200ba\u200bb\u2060c\u00ad\u200c\u180e")},
        {"byte order marks", QStringLiteral("\ufeffa\ufeff")},
        {"object replacement", QStringLiteral("\ufffca\ufffc\ufffd\ufff9b\ufffac\ufffb")},
        {"noncharacters", unit(0xfffe) + u'a' + unit(0xffff) + unit(0xfdd2) + unit(0xfdef)},
        {"private use", QStringLiteral("\ue000\uf8ff\U0010FFFD")},
        {"markup", QStringLiteral("<b>a</b> &amp; <img src=\"x\"/> %1 \\n \"quoted\"")},
        {"200,000 characters", longText(200000)},
    };
}

/// Texts that no text document holds as they are.
inline std::vector<SacredText> foldedTexts()
{
    return {
        {"paragraph separators", QStringLiteral("\u2029a\u2029\u2029b\u2029"), QStringLiteral("\na\n\nb\n")},
        {"carriage returns", QStringLiteral("\ra\r\rb\r"), QStringLiteral("\na\n\nb\n")},
        {"carriage returns with line feeds", QStringLiteral("\r\na\r\n\r\nb\r\n"),
         QStringLiteral("\na\n\nb\n")},
        {"a line feed before a carriage return", QStringLiteral("a\n\rb"), QStringLiteral("a\n\nb")},
        {"two carriage returns before a line feed", QStringLiteral("a\r\r\nb"), QStringLiteral("a\n\nb")},
        {"frame markers", unit(0xfdd0) + u'a' + unit(0xfdd1) + u'b' + unit(0xfdd0) + unit(0xfdd1),
         QStringLiteral("\na\nb\n\n")},
    };
}

inline std::vector<SacredText> allTexts()
{
    std::vector<SacredText> texts = heldTexts();
    const std::vector<SacredText> folded = foldedTexts();
    texts.insert(texts.end(), folded.begin(), folded.end());
    return texts;
}

/// What became of a text, empty if it is what it should be. Longer texts would drown a message.
inline QString changeOf(const QString &should, const QString &is)
{
    if (should == is)
        return {};
    const auto [a, b] = std::mismatch(should.begin(), should.end(), is.begin(), is.end());
    const auto code = [](const QString &text, const QChar *at) {
        return at == text.end() ? QStringLiteral("the end") : QString::number(at->unicode(), 16);
    };
    return QStringLiteral("unit %1 should be %2 and is %3; %4 units instead of %5")
        .arg(a - should.begin())
        .arg(code(should, a), code(is, b))
        .arg(is.size())
        .arg(should.size());
}

/// What the item's document holds, with line feeds between its paragraphs.
inline QString heldBy(const QGraphicsTextItem *item)
{
    return item->document()->toRawText().replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
}

/// The titles and the descriptions in the bytes of a document, in turn.
inline QStringList savedTexts(const QByteArray &bytes)
{
    qsizetype at = 0;
    const auto number = [&bytes, &at] {
        const auto value = at + 4 <= bytes.size() ? qFromBigEndian<qint32>(bytes.constData() + at) : 0;
        at += 4;
        return value;
    };
    const auto text = [&bytes, &at, number] {
        QString units;
        const qsizetype end = at + 4 + qMax(number(), 0);
        for (; at < qMin(end, bytes.size()); at += 2)
            units += QChar(qFromBigEndian<quint16>(bytes.constData() + at));
        return units;
    };
    QStringList texts;
    const int tabs = number();
    for (int tab = 0; tab < tabs; ++tab) {
        const int nodes = number();
        for (int node = 0; node < nodes && at < bytes.size(); ++node) {
            text(); // the type
            texts << text();
            at += 2 * 8 + 4 * 4; // position, indices, marks
            texts << text();
        }
    }
    return texts;
}

/// The texts that a save would write now.
inline QStringList textsOnSaving(MainWindow &window, const PrivateHome &home)
{
    const QString path = home.filePath(QStringLiteral("written.scene"));
    QFile::remove(path);
    window.saveTo(path);
    return savedTexts(readFile(path));
}
