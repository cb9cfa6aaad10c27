#include "walk/desktop.h"
#include "walk/editorwindow.h"
#include "walk/need.h"
#include "walk/program.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>

// Takes the pictures of the guide from the real program and saves the story that they show. Not a test: a
// step that does not come out as expected ends it with the line that failed.
//
// Arguments: the folder for the pictures, the path of the sample story.

namespace {

struct Chapter
{
    const char *title;
    const char *description;
};

const Chapter tale[] = {
    {"The lamp goes out", "A storm breaks the lantern of the lighthouse.\nNobody is awake to see it."},
    {"Ada rows for oil", "Ada takes the small boat across the bay, against the wind, and counts the waves."},
    {"The light returns", "She fills the lamp at dawn.\nThe ships turn home."},
};

class PictureTaker
{
public:
    PictureTaker(const QString &pictureFolder, const QString &storyPath)
        : folder(pictureFolder), story(storyPath)
    {}

    bool run();

private:
    bool keep(const char *name);
    bool addEvents();
    bool write();
    bool drag();
    bool mark();
    bool filter();
    bool band();
    bool save();
    bool tabs();

    QDir folder;
    QString story;
    Desktop desktop;
    EditorWindow window{desktop};
};

/// Saves the window as it is shown now.
bool PictureTaker::keep(const char *name)
{
    const QImage picture = desktop.screenshot().copy(window.outline());
    return picture.save(folder.filePath(QLatin1String(name) + QStringLiteral(".png")));
}

bool PictureTaker::run()
{
    NEED(folder.exists() || folder.mkpath(QStringLiteral(".")));
    NEED(desktop.start());
    Program program(desktop, QStringLiteral("guidepictures"));
    NEED(program.start());
    NEED(window.measure());
    NEED(addEvents());
    NEED(write());
    NEED(drag());
    NEED(mark());
    NEED(filter());
    NEED(band());
    NEED(save());
    NEED(tabs());
    NEED(window.askToClose());
    NEED(window.answer(QStringLiteral("alt+n")));
    NEED(program.endsWell());
    NEED(program.strangeLines().isEmpty());
    return true;
}

bool PictureTaker::addEvents()
{
    NEED(window.key(QStringLiteral("ctrl+shift+a")));
    NEED(window.comesToShowEntries(1));
    NEED(keep("first-event"));
    NEED(window.key(QStringLiteral("ctrl+shift+a")));
    NEED(window.comesToShowEntries(2));
    NEED(window.key(QStringLiteral("ctrl+shift+a")));
    NEED(window.comesToShowEntries(3));
    NEED(window.clickEmptyCanvas());
    NEED(window.key(QStringLiteral("ctrl+f")));
    NEED(window.framedEvents(3).size() == 3);
    return keep("chain");
}

bool PictureTaker::write()
{
    const QList<EventBox> boxes = window.framedEvents(3);
    NEED(boxes.size() == 3);
    for (int i = 0; i < 3; ++i) {
        NEED(window.replaceTitle(boxes.at(i), QLatin1String(tale[i].title)));
        NEED(window.writeDescription(boxes.at(i), QLatin1String(tale[i].description)));
    }
    NEED(window.clickEmptyCanvas());
    NEED(window.comesToShowEntries(3));
    for (int i = 1; i < 3; ++i) {
        const QPoint way = boxes.at(i).at(-40.0 * i, 120.0 * i) - boxes.at(i).header.topLeft();
        NEED(desktop.drag(boxes.at(i).body(), boxes.at(i).body() + way));
    }
    NEED(window.clickEmptyCanvas());
    NEED(window.key(QStringLiteral("ctrl+f")));
    NEED(window.framedEvents(3).size() == 3);
    return keep("written");
}

bool PictureTaker::drag()
{
    const QList<EventBox> boxes = window.framedEvents(3);
    NEED(boxes.size() == 3);
    NEED(desktop.drag(boxes.at(1).input, boxes.at(1).at(-40, 300))); // takes the connection off
    NEED(window.comesToShowEntries(2));
    NEED(desktop.press(boxes.at(0).output));
    NEED(desktop.moveTo(boxes.at(1).input + QPoint(-15, 110)));
    NEED(keep("dragging"));
    NEED(desktop.moveTo(boxes.at(1).input));
    NEED(desktop.release());
    return window.comesToShowEntries(3);
}

bool PictureTaker::mark()
{
    const QList<EventBox> boxes = window.framedEvents(3);
    NEED(boxes.size() == 3);
    NEED(desktop.click(boxes.at(1).body()));
    NEED(window.key(QStringLiteral("ctrl+i")));
    NEED(window.clickEmptyCanvas());
    NEED(window.comesToShowBodyColour(boxes.at(1), QColor(0xAD, 0xD8, 0xE6)));
    return keep("marks");
}

bool PictureTaker::filter()
{
    const QPoint button = window.outline().topRight() + QPoint(-52, 58);
    NEED(desktop.click(button));
    NEED(window.comesToShowEntries(1));
    NEED(keep("filtered"));
    NEED(desktop.click(button));
    return window.comesToShowEntries(3);
}

bool PictureTaker::band()
{
    const QList<EventBox> boxes = window.framedEvents(3);
    NEED(boxes.size() == 3);
    NEED(desktop.press(boxes.at(0).at(-30, -60)));
    NEED(desktop.moveTo(boxes.at(1).at(200, 100)));
    // The veil lies over the yellow of the selected ones.
    NEED(eventually([&] {
        const QColor body = desktop.screenshot().pixelColor(boxes.at(0).body());
        return body.red() > 220 && body.green() > 220 && body.blue() < 80;
    }));
    NEED(keep("rubber-band"));
    NEED(desktop.release());
    return window.clickEmptyCanvas();
}

bool PictureTaker::save()
{
    QFile::remove(story);
    NEED(window.key(QStringLiteral("ctrl+s")));
    NEED(window.giveFile(QStringLiteral("Save Scene"), story));
    return eventually([this] { return QFile::exists(story); });
}

bool PictureTaker::tabs()
{
    NEED(window.pressTabButton());
    NEED(window.comesToShowTabs(2));
    NEED(keep("tabs"));
    NEED(window.pressCloseButton(1));
    NEED(eventually([this] { return desktop.activeTitle() == QStringLiteral("Save Changes"); }));
    NEED(keep("question"));
    return window.answer(QStringLiteral("alt+n")) && window.comesToShowTabs(1);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        qCritical("usage: guidepictures FOLDER STORY");
        return 2;
    }
    return PictureTaker(arguments.at(1), QFileInfo(arguments.at(2)).absoluteFilePath()).run() ? 0 : 1;
}
