#include "workday.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

#include <algorithm>

namespace {

/// Milliseconds that a step may take; 0 where there is no limit.
double limit(const QString &step, int events)
{
    constexpr int many = 3000;
    constexpr int most = 10000;
    constexpr double limitOfMany = 100;
    constexpr double limitOfMost = 250;
    if (step == QStringLiteral("open"))
        return 0;
    return events == many ? limitOfMany : events == most ? limitOfMost : 0;
}

/// The steps of stories of several sizes, each with the shortest time of all rounds.
class Result
{
public:
    bool measure(const Desktop &desktop, int events, int rounds);
    void print() const;
    bool write(const QString &path) const;
    bool isWithinLimits() const;

private:
    QStringList steps;
    QVector<int> sizes;
    QMap<QString, QMap<int, double>> times; // by step and size
    double look = 0;
};

bool Result::measure(const Desktop &desktop, int events, int rounds)
{
    sizes << events;
    for (int i = 0; i < rounds; ++i) {
        WorkDay day(desktop, events);
        const bool done = day.run(); // what was measured until then is told all the same
        for (const QString &step : day.steps()) {
            if (!steps.contains(step))
                steps << step;
            const double time = day.times().value(step);
            double &least = times[step][events];
            least = i == 0 ? time : std::min(least, time);
        }
        const double cost = day.costOfALook();
        look = look > 0 ? std::min(look, cost) : cost;
        if (!done)
            return false;
    }
    return true;
}

void Result::print() const
{
    constexpr int firstColumn = 34;
    constexpr int column = 16;
    QTextStream out(stdout);
    out << "Milliseconds to the last change of the screen; a look at all of it takes "
        << QString::number(look, 'f', 1) << ".\n\n"
        << QStringLiteral("step").leftJustified(firstColumn);
    for (const int events : sizes)
        out << QStringLiteral("%1 events").arg(events).rightJustified(column);
    out << '\n';
    for (const QString &step : steps) {
        out << step.leftJustified(firstColumn);
        for (const int events : sizes) {
            const double time = times[step][events];
            const double most = limit(step, events);
            out << QStringLiteral("%1%2")
                       .arg(most > 0 && time > most ? QStringLiteral("! ") : QString())
                       .arg(time, 0, 'f', 1)
                       .rightJustified(column);
        }
        out << '\n';
    }
}

bool Result::write(const QString &path) const
{
    QJsonArray rows;
    for (const QString &step : steps) {
        for (const int events : sizes)
            rows << QJsonObject{{QStringLiteral("work"), step},
                                {QStringLiteral("events"), events},
                                {QStringLiteral("value"), times[step][events]},
                                {QStringLiteral("limit"), limit(step, events)}};
    }
    QFile file(path);
    const QJsonObject result{{QStringLiteral("look_ms"), look}, {QStringLiteral("rows"), rows}};
    return file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(result).toJson()) > 0;
}

bool Result::isWithinLimits() const
{
    for (const QString &step : steps) {
        for (const int events : sizes) {
            const double most = limit(step, events);
            if (most > 0 && times[step][events] > most)
                return false;
        }
    }
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Works with stories of several sizes in a real window and times the screen."));
    parser.addHelpOption();
    const QCommandLineOption eventsOption(QStringLiteral("events"),
                                          QStringLiteral("Numbers of events, separated by commas."),
                                          QStringLiteral("numbers"), QStringLiteral("24,300,3000,10000"));
    const QCommandLineOption jsonOption(
        QStringLiteral("json"), QStringLiteral("Writes the result into that file."), QStringLiteral("file"));
    const QCommandLineOption roundsOption(QStringLiteral("rounds"),
                                          QStringLiteral("How often all of it is done."),
                                          QStringLiteral("number"), QStringLiteral("3"));
    parser.addOptions({eventsOption, jsonOption, roundsOption});
    parser.process(application);

    Desktop desktop;
    if (!desktop.start())
        qFatal("%s", qPrintable(desktop.problem()));
    Result result;
    bool whole = true;
    const QStringList numbers = parser.value(eventsOption).split(QLatin1Char(','));
    for (const QString &number : numbers) {
        constexpr int least = 24; // 20 of them are cut
        if (number.toInt() < least)
            qFatal("not a number of events: %s", qPrintable(number));
        if (!result.measure(desktop, number.toInt(), std::max(1, parser.value(roundsOption).toInt()))) {
            qCritical("%s events: the work was not done; see %s", qPrintable(number),
                      qPrintable(Desktop::artefacts().path()));
            whole = false;
        }
    }
    result.print();
    if (parser.isSet(jsonOption) && !result.write(parser.value(jsonOption)))
        qFatal("cannot write %s", qPrintable(parser.value(jsonOption)));
    return whole && result.isWithinLimits() ? 0 : 1;
}
