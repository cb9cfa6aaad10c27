#include "items/eventdata.h"

#include "items/stlineedit.h"

#include <QDataStream>
#include <QDebug>

namespace {
constexpr double descriptionWidth = 400.0;
constexpr double padding = 10.0;
} // namespace

EventData::EventData(QGraphicsItem *parent, TextMaking making)
{
    setFlag(ItemHasNoContents);
    setParentItem(parent);
    description = new STLineEdit(tr("Enter description"), descriptionWidth, this, making);
    description->onTextChanged([this] { noteChange(); });
    lastText = description->text();
}

QString EventData::getDescription() const { return description->text(); }

STLineEdit *EventData::descriptionItem() const
{
    description->makeWhole();
    return description;
}

void EventData::setDescription(const QString &text)
{
    settingText = true;
    description->setText(text);
    settingText = false;
}

void EventData::setMeasuredDescription(const QString &text, const QRectF &outline)
{
    settingText = true;
    description->setMeasuredText(text, outline.adjusted(padding, padding, -padding, -padding));
    settingText = false;
}

QRectF EventData::boundingRect() const
{
    if (!description) // asked while the description is being made
        return {};
    return description->boundingRect().adjusted(-padding, -padding, padding, padding);
}

void EventData::paintGreeked(QPainter &painter, double ground) const
{
    description->paintGreeked(painter, ground);
}

void EventData::paint(QPainter *, const QStyleOptionGraphicsItem *, QWidget *) {}

void EventData::aboutToResize()
{
    ResizeObserver::tellAboutToResize(parentItem());
    prepareGeometryChange();
}

void EventData::resized() { ResizeObserver::tellResized(parentItem()); }

void EventData::noteChange()
{
    if (settingText)
        return;
    const QString text = description->text();
    if (text == lastText)
        return;
    lastText = text;
    emit s_isChanged();
}

void EventData::sl_isChanged() { noteChange(); }

void EventData::sl_saveToFile(QDataStream &stream)
{
    qInfo("Saving event data");
    stream << description->text();
}

void EventData::sl_openFromFile(QDataStream &stream)
{
    qInfo("Opening event data");
    QString text;
    stream >> text;
    description->setText(text);
    qInfo("SetEventData");
}
