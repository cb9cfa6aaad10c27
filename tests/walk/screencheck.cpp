#include "walk/screencheck.h"

#include "support/screenwatch.h"
#include "walk/desktop.h"
#include "walk/editorwindow.h"
#include "walk/program.h"

#include <QElapsedTimer>
#include <QPainter>
#include <QTest>

namespace {

constexpr int restTime = 300;   // milliseconds without a change; less than a text's cursor stays on or off
constexpr int blinkTime = 5000; // within which the cursor is as it was before
constexpr int stretch = 8;      // pixels, more than the window has below its canvas

} // namespace

ScreenCheck::ScreenCheck(const Desktop &desktopToUse, const EditorWindow &windowToCheck)
    : desktop(desktopToUse), editor(windowToCheck)
{}

QImage ScreenCheck::picture() const { return desktop.screenshot().copy(editor.outline()); }

bool ScreenCheck::showsNotice(const QImage &window) const
{
    return EditorWindow::isNotice(window, editor.canvasArea().translated(-editor.outline().topLeft()));
}

void ScreenCheck::hideNotice(QImage &window) const
{
    constexpr int height = 64; // of two lines
    const QRect area = editor.canvasArea().translated(-editor.outline().topLeft());
    QPainter(&window).fillRect(area.adjusted(0, area.height() - height, 0, 0), Qt::black);
}

bool ScreenCheck::comesToRest(QImage &still) const
{
    QElapsedTimer unchanged;
    still = picture();
    unchanged.start();
    return eventually([&] {
        const QImage seen = picture();
        if (seen != still) {
            still = seen;
            unchanged.restart();
        }
        return unchanged.elapsed() >= restTime;
    });
}

/// Stretches the window, sees that the canvas has been painted down to its new edge, and takes it back.
bool ScreenCheck::isPaintedAnew(quint32 window) const
{
    const QRect outline = editor.outline();
    const QRect canvas = editor.canvasArea();
    const QRect below(canvas.left(), outline.bottom() + 1, canvas.width(), stretch);
    const QImage surroundings = desktop.screenshot().copy(below);
    const auto isStretched = [&] {
        const QImage seen = desktop.screenshot();
        const int row = canvas.bottom();
        // What was in the last row goes on below it, wherever no event ends there.
        int goesOn = 0;
        for (int x = canvas.left(); x <= canvas.right(); ++x)
            goesOn += seen.pixel(x, row + stretch) == seen.pixel(x, row) ? 1 : 0;
        return seen.copy(below) != surroundings && goesOn > canvas.width() / 2;
    };
    const auto isBack = [&] { return desktop.screenshot().copy(below) == surroundings; };
    return desktop.resize(window, outline.size() + QSize(0, stretch)) && eventually(isStretched) &&
           desktop.resize(window, outline.size()) && eventually(isBack);
}

QString ScreenCheck::fault() const
{
    QImage before;
    if (!comesToRest(before))
        return QStringLiteral("the screen does not come to rest");
    if (!isPaintedAnew(desktop.windowWithTitle(Program::title())))
        return QStringLiteral("the window does not follow its size");
    QImage after;
    const bool alike = QTest::qWaitFor(
        [&] {
            after = picture();
            // Good news go by themselves at any moment; what they cover is looked at without them.
            if (showsNotice(before) || showsNotice(after)) {
                hideNotice(before);
                hideNotice(after);
            }
            return after == before;
        },
        blinkTime);
    if (alike)
        return {};
    before.save(Desktop::artefacts().filePath(QStringLiteral("on-screen.png")));
    after.save(Desktop::artefacts().filePath(QStringLiteral("painted-anew.png")));
    const ScreenWatch::Difference found = ScreenWatch::difference(before, after);
    const QRect canvas = editor.canvasArea().translated(-editor.outline().topLeft());
    return QStringLiteral("%1 did not show what it should: %2 pixels within %3,%4 %5x%6")
        .arg(canvas.intersects(found.all) ? QStringLiteral("the canvas") : QStringLiteral("the window"))
        .arg(found.pixels)
        .arg(found.all.x())
        .arg(found.all.y())
        .arg(found.all.width())
        .arg(found.all.height());
}
