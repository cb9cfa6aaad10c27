#pragma once

#include <QImage>
#include <QString>

class Desktop;
class EditorWindow;

/// Compares what stands on the screen with what the window paints when it has to paint everything anew.
///
/// Uncovering a window is not enough for that: the program shows again what it has painted before. So the
/// window is made a little higher and then as high as it was; each time it paints all of itself.
class ScreenCheck
{
public:
    /// Both must outlive this object; the window shows a tab, and its canvas reaches down to its lower edge.
    ScreenCheck(const Desktop &desktopToUse, const EditorWindow &windowToCheck);

    /// Says which part does not show what it should, or nothing. Both pictures are kept among the artefacts
    /// if they differ.
    QString fault() const;

private:
    QImage picture() const;
    bool showsNotice(const QImage &window) const;
    void hideNotice(QImage &window) const;
    bool comesToRest(QImage &still) const;
    bool isPaintedAnew(quint32 window) const;

    const Desktop &desktop;
    const EditorWindow &editor;
};
