#include "app/mainwindow.h"

#include <QApplication>
#include <QFile>

#include <unistd.h>

// Opens the first file and saves it over the second one. failing-calls.py looks at what the system is
// asked for meanwhile, between the questions for two files that are not there. Ends with 0 if the save was
// told to have worked, with 1 if not.
int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    MainWindow window;
    window.loadFrom(QFile::decodeName(argv[1]));
    access("/save begins", F_OK);
    const bool isSaved = window.saveTo(QFile::decodeName(argv[2]));
    access("/save ends", F_OK);
    return isSaved ? 0 : 1;
}
