#pragma once

#include "items/latetext.h"
#include "items/resizeobserver.h"

#include <QColor>
#include <QGraphicsItem>
#include <QObject>

#include <functional>

class QDataStream;
class STLineEdit;

/// The content of an event: its description. Owned by its parent item, a NodeData or an entry of the panel.
class EventData : public QObject, public QGraphicsItem, public ResizeObserver
{
    Q_OBJECT
    Q_INTERFACES(QGraphicsItem)

public:
    /// `parent` may be null; the caller then owns the object until it gets a parent item.
    explicit EventData(QGraphicsItem *parent, TextMaking making = TextMaking::atOnce);

    QString getDescription() const;
    /// Sets the text without reporting a change.
    void setDescription(const QString &text);
    /// As setDescription(), but a change is reported.
    void replaceDescription(const QString &text);
    /// What one that was not made yet knew of itself: its text, the outline of that, and which text it had
    /// reported last.
    void takeOver(const QString &text, const QRectF &outline, const QString &lastReported);
    /// As setDescription() for a text whose outline (an EventData's bounding rectangle) is known already.
    void setMeasuredDescription(const QString &text, const QRectF &outline);
    /// The text item, whole; owned by this object.
    STLineEdit *descriptionItem() const;

    /// What a new event says.
    static QString placeholder() { return tr("Enter description"); }
    /// The outline of one with that text.
    static QRectF outlineOf(const QString &text);
    /// The text's place in that outline.
    static QRectF textPlace(const QRectF &outline);
    /// Write and read the record of any description, with their log lines; `take` gets the text that was
    /// read.
    static void writeRecord(QDataStream &stream, const QString &text);
    static void readRecord(QDataStream &stream, const std::function<void(const QString &)> &take);

    /// Paints what it looks like where it is too small to be read, in item coordinates, with so much of the
    /// ground (from 0 to 1); makes nothing.
    void paintGreeked(QPainter &painter, double ground) const;

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    void aboutToResize() override;
    void resized() override;

signals:
    void s_isChanged();

public slots:
    void sl_isChanged();
    void sl_saveToFile(QDataStream &stream);
    void sl_openFromFile(QDataStream &stream);

private:
    void noteChange();

    bool settingText = false;
    STLineEdit *description = nullptr;
    QString lastText; // as last reported; texts set by the program do not count
};
