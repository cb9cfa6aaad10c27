#include "items/eventdata.h"
#include "story/csvtable.h"
#include "story/eventrows.h"
#include "story/leftout.h"
#include "story/readings.h"
#include "story/storyformat.h"

#include <QCoreApplication>
#include <QHash>

#include <cmath>
#include <optional>

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(CsvReading)
};

/// Nothing if the field says neither.
std::optional<bool> truthOf(const QString &field)
{
    static const QHash<QString, bool> words{
        {QStringLiteral("1"), true},
        {QStringLiteral("true"), true},
        {QStringLiteral("yes"), true},
        {QStringLiteral("x"), true},
        {QString(), false},
        {QStringLiteral("0"), false},
        {QStringLiteral("no"), false},
        {QStringLiteral("false"), false},
    };
    const auto found = words.constFind(field.trimmed().toLower());
    return found == words.constEnd() ? std::nullopt : std::optional(*found);
}

/// What each column is, by the heading.
class Columns
{
public:
    Columns(const CsvTable::Row &heading, LeftOut &leftOut)
    {
        for (const QString &field : heading.fields) {
            const QString name = nameOf(field);
            if (name.isEmpty() || places.contains(name))
                leftOut.add(Texts::tr("the column %1 is left out").arg(quotedTitle(field)), heading.line);
            else
                places.insert(name, count);
            ++count;
        }
    }

    bool has(const char *name) const { return places.contains(QLatin1String(name)); }
    QString field(const CsvTable::Row &row, const char *name) const
    {
        return row.fields.value(places.value(QLatin1String(name), -1));
    }
    int size() const { return count; }

private:
    /// Empty for a column that means nothing here.
    static QString nameOf(const QString &field)
    {
        const QString name = field.trimmed().toLower().replace(QLatin1Char(' '), QLatin1Char('_'));
        static const QHash<QString, QString> others{
            {QStringLiteral("name"), QStringLiteral("title")},
            {QStringLiteral("event"), QStringLiteral("title")},
            {QStringLiteral("text"), QStringLiteral("description")},
            {QStringLiteral("notes"), QStringLiteral("description")},
            {QStringLiteral("id"), QStringLiteral("index")},
        };
        static const QStringList known{
            QStringLiteral("tab"),   QStringLiteral("index"),       QStringLiteral("place"),
            QStringLiteral("title"), QStringLiteral("description"), QStringLiteral("fed_by"),
            QStringLiteral("end"),   QStringLiteral("important"),   QStringLiteral("x"),
            QStringLiteral("y"),
        };
        const QString meant = others.value(name, name);
        return known.contains(meant) ? meant : QString();
    }

    QHash<QString, int> places;
    int count = 0;
};

class Reading
{
public:
    /// `text` is what the table was read from.
    Reading(const CsvTable &rowsOfAll, const QByteArray &text, Story &story)
        : table(rowsOfAll), columns(rowsOfAll.rows().front(), leftOut), read(story)
    {
        leftOut.addBrokenLetters(text);
    }

    ImportResult readAll()
    {
        ImportResult result;
        if (!columns.has("title")) {
            result.trouble = noteOfLine(table.rows().front().line, Texts::tr("no column is called title"));
            return result;
        }
        arePlaced = columns.has("x") && columns.has("y");
        for (std::size_t i = 1; i < table.rows().size(); ++i)
            readRow(table.rows()[i], int(i));
        QStringList notes;
        for (std::size_t i = 0; i < tabs.size(); ++i) {
            EventRows rows(notes);
            for (EventRow &row : tabs[i]) // NOLINT(modernize-loop-convert): handed on
                rows.add(std::move(row));
            rows.fill(read.tabs[i]);
            if (!columns.has("end"))
                markEnd(read.tabs[i]);
        }
        result.notes = leftOut.notes() + notes;
        result.places = arePlaced ? ImportResult::Places::wished : ImportResult::Places::none;
        return result;
    }

private:
    void readRow(const CsvTable::Row &row, int number)
    {
        if (row.fields.size() > columns.size())
            leftOut.add(Texts::tr("what stands behind the last column is left out"), row.line);
        EventRow made;
        made.line = row.line;
        made.event.title = columns.field(row, "title");
        const QString text = columns.field(row, "description");
        made.event.description = text.isEmpty() ? EventData::tr("Enter description") : text;
        made.event.isEnd = isMarked(row, "end");
        made.event.isImportant = isMarked(row, "important");
        made.event.position = QPointF(coordinate(row, "x"), coordinate(row, "y"));
        std::vector<EventRow> &rows = rowsOf(columns.field(row, "tab"), row.line);
        if (columns.has("index"))
            made.index = wholeNumber(row, "index", made.name);
        else
            made.index = number;
        if (!made.name.isEmpty())
            leftOut.add(Texts::tr("index is no whole number; the event gets one"), row.line);
        if (columns.has("fed_by"))
            made.fedBy = wholeNumber(row, "fed_by", made.fedByName);
        else if (!rows.empty()) // a list without connections is a chain
            made.fedByRow = rows.size() - 1;
        rows.push_back(std::move(made));
    }

    std::vector<EventRow> &rowsOf(const QString &tab, qint64 line)
    {
        auto found = placesOfTabs.find(tab);
        if (found == placesOfTabs.end()) {
            found = placesOfTabs.insert(tab, tabs.size());
            tabs.emplace_back();
            read.tabs.emplace_back();
            read.tabs.back().name = tab;
            leftOut.addTabName(tab, line);
        }
        return tabs[*found];
    }

    bool isMarked(const CsvTable::Row &row, const char *column)
    {
        const std::optional<bool> truth = truthOf(columns.field(row, column));
        if (!truth)
            leftOut.add(Texts::tr("%1 is neither 1 nor 0 and is left out").arg(QLatin1String(column)),
                        row.line);
        return truth.value_or(false);
    }

    /// A field that holds no number is a name.
    std::optional<int> wholeNumber(const CsvTable::Row &row, const char *column, QString &name) const
    {
        const QString field = columns.field(row, column).trimmed();
        bool isNumber = false;
        const int number = field.toInt(&isNumber);
        if (isNumber)
            return number;
        name = field;
        return std::nullopt;
    }

    double coordinate(const CsvTable::Row &row, const char *column)
    {
        bool isNumber = false;
        const double number = columns.field(row, column).trimmed().toDouble(&isNumber);
        if (isNumber && std::isfinite(number))
            return number;
        if (arePlaced)
            leftOut.add(Texts::tr("x and y are not numbers in every row and are left out"), row.line);
        arePlaced = false;
        return 0;
    }

    /// Without a word about it the story is what begins with the first event.
    static void markEnd(StoryTab &tab)
    {
        int place = 0;
        while (!tab.events[place].fed.empty())
            place = tab.events[place].fed.front();
        tab.events[place].isEnd = true;
        tab.findChain();
    }

    const CsvTable &table;
    LeftOut leftOut;
    Columns columns;
    Story &read;
    QHash<QString, std::size_t> placesOfTabs;
    std::vector<std::vector<EventRow>> tabs;
    bool arePlaced = false;
};

} // namespace

ImportResult readCsv(const QByteArray &text, Story &story)
{
    QString all = QString::fromUtf8(text);
    if (all.startsWith(QChar(QChar::ByteOrderMark)))
        all.remove(0, 1);
    const CsvTable table(all);
    ImportResult result;
    if (table.openQuote() != 0)
        result.trouble = noteOfLine(table.openQuote(), Texts::tr("a quotation mark is never closed"));
    else if (table.rows().empty())
        result.trouble = Texts::tr("has no line that says what the columns are");
    else
        result = Reading(table, text, story).readAll();
    return result;
}
