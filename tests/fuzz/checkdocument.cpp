// Opens each of the named files in one window, and checks what came of it, its time and its memory: what is
// shown is what is saved, and what was saved is shown and saved again. Prints a line for each file that does
// harm, and "done" with its number after each; mutate.py reads both.

#include "app/badfiles.h"
#include "support/processfigures.h"

#include <QApplication>

#include <cstdio>

namespace {

QString troubleOf(FileOpener &opener, const QString &path)
{
    const QByteArray bytes = readFile(path);
    QString problem;
    const Cost cost = costOf([&] { problem = opener.open(bytes); });
    if (problem.isEmpty())
        problem = faultOfOpening(cost);
    return problem.isEmpty() ? opener.check(bytes, FileOpener::OpenAndSave) : problem;
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QPA_PLATFORMTHEME", "");
    const PrivateHome home;
    const QApplication app(argc, argv);
    FileOpener opener;
    int harmful = 0;
    for (int i = 1; i < argc; ++i) {
        const QString path = QString::fromLocal8Bit(argv[i]);
        if (const QString trouble = troubleOf(opener, path); !trouble.isEmpty()) {
            std::printf("%s: %s\n", argv[i], qPrintable(QString(trouble).replace(u'\n', u' ')));
            ++harmful;
        }
        std::printf("done %d\n", i);
        std::fflush(stdout);
    }
    return harmful == 0 ? 0 : 1;
}
