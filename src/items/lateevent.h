#pragma once

#include <QRectF>
#include <QString>

#include <memory>

class QPainter;

/// The title and the description of a node that has no inner items yet: known, measured, and painted as they
/// look from far away.
///
/// Owned by the node, which asks it instead of those items, and gives it up for them as soon as somebody
/// comes near enough to see or reaches for one. Texts that LateText::canWait() refuses are not for this.
class LateEvent
{
public:
    /// As new events are.
    explicit LateEvent(const QString &title);
    ~LateEvent();
    LateEvent(const LateEvent &) = delete;
    LateEvent &operator=(const LateEvent &) = delete;

    const QString &title() const { return title_; }
    void setTitle(const QString &text);
    const QString &description() const { return description_; }
    void setDescription(const QString &text);
    /// What the description takes, as an EventData would.
    const QRectF &outline() const { return outline_; }

    /// The description that was last reported as changed; texts set by the program do not count.
    const QString &lastReported() const { return reported; }
    /// Whether it has to be reported now, which is then noted as done.
    bool report();

    /// Paint what they look like where they are too small to be read, each in the coordinates of the item
    /// that is not there; a title in a header that leaves it that room, a description with so much of its
    /// ground (from 0 to 1).
    void paintTitle(QPainter &painter, double room);
    void paintDescription(QPainter &painter, double ground);

private:
    struct Picture;
    Picture &picture(double room);

    QString title_;
    QString description_;
    QString reported;
    QRectF outline_;
    std::unique_ptr<Picture> known; // null until it is painted, and after a change
};
