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
    description = new STLineEdit(placeholder(), descriptionWidth, this, making);
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
    description->setMeasuredText(text, textPlace(outline));
    settingText = false;
}

void EventData::replaceDescription(const QString &text) { description->setText(text); }

void EventData::takeOver(const QString &text, const QRectF &outline, const QString &lastReported)
{
    setMeasuredDescription(text, outline);
    lastText = lastReported;
}

QRectF EventData::outlineOf(const QString &text)
{
    return QRectF(QPointF(), STLineEdit::sizeOf(text, descriptionWidth))
        .adjusted(-padding, -padding, padding, padding);
}

QRectF EventData::textPlace(const QRectF &outline)
{
    return outline.adjusted(padding, padding, -padding, -padding);
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

void EventData::writeRecord(QDataStream &stream, const QString &text)
{
    qInfo("Saving event data");
    stream << text;
}

void EventData::readRecord(QDataStream &stream, const std::function<void(const QString &)> &take)
{
    qInfo("Opening event data");
    QString text;
    stream >> text;
    take(text);
    qInfo("SetEventData");
}

void EventData::sl_saveToFile(QDataStream &stream) { writeRecord(stream, description->text()); }

void EventData::sl_openFromFile(QDataStream &stream)
{
    readRecord(stream, [this](const QString &text) { replaceDescription(text); });
}
