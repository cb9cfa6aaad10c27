#include "story/formats.h"
#include "story/readings.h"
#include "story/story.h"
#include "story/storyformat.h"

#include <QIODevice>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QRegularExpression>
#include <QSet>
#include <QUuid>

namespace {

/// Of the stories that this program writes: the same story keeps its number.
const QUuid &familyOfStories()
{
    static const QUuid family(QStringLiteral("{0b6ff1c0-8a4f-4d51-9a53-6a3d3f3f7c5e}"));
    return family;
}

QString shortest(double number) { return QString::number(number, 'g', QLocale::FloatingPointShortest); }

/// A title as the name of a passage: in one line, and without what ends a link.
QString passageName(QString title)
{
    for (QChar &sign : title) {
        if (sign.category() == QChar::Other_Control || sign == QChar::LineSeparator ||
            sign == QChar::ParagraphSeparator)
            sign = QLatin1Char(' ');
    }
    title.replace(QLatin1String("->"), QStringLiteral("\u2192"));
    title.replace(QLatin1String("<-"), QStringLiteral("\u2190"));
    title.replace(QLatin1Char('|'), QChar(u'\u00A6'));
    static const QRegularExpression endOfLink(QStringLiteral("\\](?=[\\]\\[])"));
    title.replace(endOfLink, QStringLiteral("] "));
    title = title.trimmed();
    if (title.startsWith(QLatin1String("[")))
        title.prepend(QChar(u'\u2060')); // or a link to it would begin with three of them
    return title.isEmpty() ? QStringLiteral("Event") : title;
}

/// Passages are found by their names, so each needs one of its own.
class PassageNames
{
public:
    QString nameFor(const QString &title)
    {
        const QString wanted = passageName(title);
        QString name = wanted;
        for (int &number = lastNumbers[wanted]; taken.contains(name);)
            name = QStringLiteral("%1 (%2)").arg(wanted, QString::number(++number + 1));
        taken.insert(name);
        return name;
    }

private:
    // What the format itself has for such passages.
    QSet<QString> taken{QStringLiteral("StoryTitle"), QStringLiteral("StoryData")};
    QHash<QString, int> lastNumbers;
};

QString escapedName(const QString &name)
{
    QString escaped;
    for (const QChar sign : name) {
        if (QStringLiteral("\\[]{}").contains(sign))
            escaped += QLatin1Char('\\');
        escaped += sign;
    }
    return escaped;
}

/// What a passage shows as that text: players read the markup of web pages, links, and a line of two colons.
QString passageText(const QString &text)
{
    QString escaped = text;
    escaped.replace(QLatin1Char('&'), QLatin1String("&amp;"));
    escaped.replace(QLatin1Char('<'), QLatin1String("&lt;"));
    escaped.replace(QLatin1Char('>'), QLatin1String("&gt;"));
    escaped.replace(QLatin1String("[["), QLatin1String("[&#91;"));
    if (escaped.startsWith(QLatin1String("::")))
        escaped.replace(0, 1, QStringLiteral("&#58;"));
    escaped.replace(QLatin1String("\n::"), QLatin1String("\n&#58;:"));
    return escaped;
}

QByteArray inOneLine(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

/// Twee 3: a passage an event, with links to what it leads to.
class TweeFormat : public StoryFormat
{
public:
    QString name() const override { return QStringLiteral("twee"); }
    QStringList suffixes() const override { return {name(), QStringLiteral("tw")}; }
    bool tellsInOrder() const override { return false; }

    void write(const Story &story, const ExportOptions &options, QIODevice &out) const override
    {
        Telling telling(story, options);
        PassageNames names;
        QByteArray passages;
        QString start;
        for (std::size_t i = 0; i < story.tabs.size(); ++i) {
            if (!options.wants(int(i)) || story.tabs[i].events.empty())
                continue;
            const StoryTab &tab = story.tabs[i];
            QStringList nameOf;
            for (const StoryEvent &event : tab.events)
                nameOf << names.nameFor(event.title);
            for (std::size_t k = 0; k < tab.events.size(); ++k) {
                telling.next();
                passages += passage(tab, int(k), story.tabs.size() > 1 ? int(i) + 1 : 0, nameOf);
            }
            if (start.isEmpty())
                start = nameOf[tab.chain.empty() ? 0 : tab.chain.front()];
        }
        QJsonObject data{{QStringLiteral("ifid"), ifidOf(options.name + QString::fromUtf8(passages))}};
        if (!start.isEmpty())
            data[QStringLiteral("start")] = start;
        out.write(":: StoryTitle\n" + passageText(passageName(options.name)).toUtf8() + "\n\n:: StoryData\n" +
                  QJsonDocument(data).toJson() + passages);
    }

    bool canRead() const override { return true; }
    ImportResult read(const QByteArray &text, Story &story) const override { return readTwee(text, story); }

private:
    static QString ifidOf(const QString &content)
    {
        return QUuid::createUuidV5(familyOfStories(), content).toString(QUuid::WithoutBraces).toUpper();
    }

    /// `tabNumber` 0 is no tag.
    static QByteArray passage(const StoryTab &tab, int place, int tabNumber, const QStringList &nameOf)
    {
        const StoryEvent &event = tab.events[place];
        QStringList tags;
        if (event.isImportant)
            tags << QStringLiteral("important");
        if (event.isEnd)
            tags << QStringLiteral("end-of-story");
        if (tabNumber > 0)
            tags << QStringLiteral("tab-%1").arg(tabNumber);
        QJsonObject data{{QStringLiteral("position"),
                          shortest(event.position.x()) + QLatin1Char(',') + shortest(event.position.y())}};
        if (nameOf[place] != event.title)
            data[QStringLiteral("title")] = event.title;

        QByteArray written = "\n:: " + escapedName(nameOf[place]).toUtf8();
        if (!tags.isEmpty())
            written += " [" + tags.join(QLatin1Char(' ')).toUtf8() + "]";
        written += ' ' + inOneLine(data) + '\n';
        if (const QString text = event.text(); !text.isEmpty())
            written += passageText(text).toUtf8() + '\n';
        if (!event.fed.empty() && !event.text().isEmpty())
            written += '\n';
        for (const int next : event.fed)
            written += "[[" + nameOf[next].toUtf8() + "]]\n";
        return written;
    }
};

} // namespace

const StoryFormat &tweeFormat()
{
    static const TweeFormat format;
    return format;
}
