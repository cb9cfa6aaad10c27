#include "endworks.h"
#include "measure.h"
#include "story.h"
#include "works.h"

#include "app/heap.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QStandardPaths>
#include <QTextStream>

namespace {

void keepWarningsOnly(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type != QtInfoMsg && type != QtDebugMsg)
        QTextStream(stderr) << text << '\n';
}

void print(const QVector<Row> &rows, double unit, const QVector<int> &sizes)
{
    QTextStream out(stdout);
    out << "U = " << QString::number(unit * 1000, 'f', 1) << " us\n\n";
    out << QStringLiteral("work").leftJustified(34);
    for (const int events : sizes)
        out << QStringLiteral("%1 events").arg(events).rightJustified(22);
    out << QStringLiteral("growth").rightJustified(10) << '\n';
    QStringList works;
    QMap<QString, QMap<int, Row>> table;
    for (const Row &row : rows) {
        if (!table.contains(row.work))
            works << row.work;
        table[row.work][row.events] = row;
    }
    for (const QString &work : std::as_const(works)) {
        out << work.leftJustified(34);
        for (const int events : sizes) {
            const Row row = table[work].value(events);
            QString text = QStringLiteral("-"); // not for that many
            if (row.events > 0 && row.kind == Row::Kind::time)
                text = QStringLiteral("%1 ms %2 U").arg(row.value, 0, 'f', 2).arg(row.units, 7, 'f', 1);
            else if (row.events > 0)
                text = QStringLiteral("%1 KiB").arg(row.value, 0, 'f', 1);
            out << text.rightJustified(22);
        }
        // From 1,000 to 10,000 events, which goes with the number if it is ten.
        const double small = table[work].value(1000).value;
        const double large = table[work].value(10000).value;
        out << (small > 0 && large > 0 ? QString::number(large / small, 'f', 1) : QStringLiteral("-"))
                   .rightJustified(10)
            << '\n';
    }
}

bool writeJson(const QString &path, const QVector<Row> &rows, double unit)
{
    QJsonArray all;
    for (const Row &row : rows)
        all << QJsonObject{{QStringLiteral("work"), row.work},
                           {QStringLiteral("events"), row.events},
                           {QStringLiteral("value"), row.value},
                           {QStringLiteral("units"), row.units}};
    QFile file(path);
    const QJsonObject result{{QStringLiteral("unit_ms"), unit}, {QStringLiteral("rows"), all}};
    return file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(result).toJson()) > 0;
}

} // namespace

int main(int argc, char *argv[])
{
    joinFreedMemory(); // as the program does
    qInstallMessageHandler(keepWarningsOnly);
    QStandardPaths::setTestModeEnabled(true);
    const QApplication application(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], EndWorks::option) == 0)
        return EndWorks::editAndWait(QFile::decodeName(argv[2]));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Measures what a writer does with stories of several sizes."));
    parser.addHelpOption();
    const QCommandLineOption eventsOption(QStringLiteral("events"),
                                          QStringLiteral("Numbers of events, separated by commas."),
                                          QStringLiteral("numbers"), QStringLiteral("100,1000,10000"));
    const QCommandLineOption jsonOption(
        QStringLiteral("json"), QStringLiteral("Writes the result into that file."), QStringLiteral("file"));
    const QCommandLineOption roundsOption(QStringLiteral("rounds"),
                                          QStringLiteral("How often each work is measured."),
                                          QStringLiteral("number"), QStringLiteral("7"));
    const QCommandLineOption partsOption(
        QStringLiteral("parts"),
        QStringLiteral("Measures only these: %1.").arg(Works::partNames().join(QLatin1String(", "))),
        QStringLiteral("names"));
    parser.addOptions({eventsOption, jsonOption, roundsOption, partsOption});
    parser.process(application);

    QVector<int> sizes;
    const QStringList numbers = parser.value(eventsOption).split(QLatin1Char(','));
    for (const QString &number : numbers) {
        if (number.toInt() < 2)
            qFatal("not a number of events: %s", qPrintable(number));
        sizes << number.toInt();
    }
    const QStringList partsWanted = parser.value(partsOption).split(QLatin1Char(','), Qt::SkipEmptyParts);
    // The speed of a machine changes during a run, so the unit is taken between the works.
    std::vector<double> units;
    QVector<Row> rows;
    for (const int events : std::as_const(sizes))
        rows << Works(events, parser.value(roundsOption).toInt()).measured(partsWanted, units);
    const double unit = Measure::median(units);
    for (Row &row : rows) {
        if (row.kind == Row::Kind::time)
            row.units = row.value / unit;
    }
    print(rows, unit, sizes);
    if (parser.isSet(jsonOption) && !writeJson(parser.value(jsonOption), rows, unit))
        qFatal("cannot write %s", qPrintable(parser.value(jsonOption)));
    return 0;
}
