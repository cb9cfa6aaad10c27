#include "items/eventdata.h"

#include "items/stlineedit.h"

#include <QDataStream>
#include <QDebug>
#include <QTextDocument>

namespace {
constexpr double descriptionWidth = 400.0;
constexpr double padding = 10.0;
} // namespace

EventData::EventData(QGraphicsItem *parent)
{
    setParentItem(parent);
    description = new STLineEdit(QStringLiteral("Enter description"), descriptionWidth, this);
    connect(description->document(), &QTextDocument::contentsChanged, this, &EventData::sl_isChanged);
    lastText = description->toPlainText();
}

QString EventData::getDescription() const { return description->toPlainText(); }

void EventData::setDescription(const QString &text)
{
    settingText = true;
    description->setText(text);
    settingText = false;
}

QRectF EventData::boundingRect() const
{
    if (!description) // asked while the description is being made
        return {};
    return description->boundingRect().adjusted(-padding, -padding, padding, padding);
}

void EventData::paint(QPainter *, const QStyleOptionGraphicsItem *, QWidget *) {}

void EventData::aboutToResize()
{
    ResizeObserver::tellAboutToResize(parentItem());
    prepareGeometryChange();
}

void EventData::resized() { ResizeObserver::tellResized(parentItem()); }

void EventData::sl_isChanged()
{
    if (settingText)
        return;
    const QString text = description->toPlainText();
    if (text == lastText)
        return;
    lastText = text;
    emit s_isChanged();
}

void EventData::sl_saveToFile(QDataStream &stream)
{
    qInfo() << "Saving event data";
    stream << description->toPlainText();
}

void EventData::sl_openFromFile(QDataStream &stream)
{
    qInfo() << "Opening event data";
    QString text;
    stream >> text;
    description->setText(text);
    qInfo() << "SetEventData";
}
