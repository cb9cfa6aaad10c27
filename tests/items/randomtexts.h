#pragma once

#include <QRandomGenerator>
#include <QString>
#include <QStringList>

/// Texts that are the same in each run.
class RandomTexts
{
public:
    explicit RandomTexts(quint32 seed) : random(seed) {}

    QString prose()
    {
        QString text = word(true);
        const int words = below(90);
        for (int i = 0; i < words; ++i) {
            const int sign = below(40);
            if (sign < 3)
                text += QStringLiteral(",;:")[sign];
            const bool ends = sign == 3 || sign == 4;
            if (ends)
                text += QStringLiteral(".!?")[below(3)];
            if (sign == 5)
                text += QStringLiteral("\n\n");
            else if (sign == 6)
                text += QStringLiteral("-");
            else
                text += sign == 7 ? QStringLiteral("  ") : QStringLiteral(" ");
            if (sign == 8)
                text += QStringLiteral("\u201C") + word(true) + QStringLiteral("\u201D");
            else if (sign == 9)
                text += QStringLiteral("(") + word(false) + QStringLiteral(")");
            else
                text += sign == 10 ? QString::number(below(3000)) : word(ends);
        }
        return text + QStringLiteral(".");
    }

    QString plainProse()
    {
        static const QStringList all =
            QStringLiteral(
                "The keeper counts lamps and, while the tide turns, who knows? walks to-morrow's stair.\n\n"
                "Über naïve affairs “Wave” whispers; (nobody) hears! There are 1,500 steps, 12 of salt "
                "and/or \u2013 who knows \u2026")
                .split(u' ');
        QString text = QStringLiteral("It");
        const int words = below(90);
        for (int i = 0; i < words; ++i)
            text += u' ' + all.at(below(int(all.size())));
        return text;
    }

    /// Signs in no sensible order; most of these nobody but the engine can tell.
    QString signs(QStringView of, int most)
    {
        QString text;
        const int length = below(most);
        for (int i = 0; i < length; ++i)
            text += below(5) == 0 ? QChar(u' ') : of[below(int(of.size()))];
        return text;
    }

    QString anything()
    {
        QString text;
        const int length = below(120);
        for (int i = 0; i < length; ++i) {
            const int kind = below(6);
            char32_t sign = kind == 0 ? below(0x250) : kind == 1 ? below(0x3000) : 0x20U + below(0x5f);
            if (kind == 2)
                sign = 0x2000U + below(0x70);
            if (kind == 3)
                sign = below(3) == 0 ? 0x1f300U + below(0x300) : 0x4e00U + below(0x200);
            text += QString::fromUcs4(&sign, 1);
        }
        return text;
    }

private:
    int below(int bound) { return int(random.bounded(bound)); }

    QString word(bool capital)
    {
        static const QStringList all =
            QStringLiteral("the a of to and keeper lamp tide AVATAR affine office flight fjord Type Wave "
                           "to-morrow keeper's rope door über Fußweg naïve Œuvre coöperate Tore Yvonne "
                           "LTd Päckchen 12 3rd 1,500 rowboat salt while hall filled with very long words")
                .split(u' ');
        QString word = all.at(below(int(all.size())));
        if (capital)
            word[0] = word[0].toUpper();
        if (below(4) == 0)
            word += signs(u"etaoinshrdlu", 6).remove(u' ');
        return word;
    }

    QRandomGenerator random;
};
