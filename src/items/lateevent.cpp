#include "items/lateevent.h"

#include "items/eventdata.h"
#include "items/greekedtext.h"
#include "items/stlineedit.h"
#include "items/titlelook.h"

namespace {

/// A document knows no null text, and neither do files that are written from one.
QString notNull(const QString &text) { return text.isNull() ? QStringLiteral("") : text; }

} // namespace

struct LateEvent::Picture
{
    Picture(const QString &title, double room)
    {
        const QSizeF size = TitleLook::sizeOf(title);
        look = TitleLook(title, size, room);
        titlePlace = look.place(QRectF(QPointF(), size), room);
    }

    TitleLook look;
    QRectF titlePlace;
    GreekedText titleBars;
    GreekedText descriptionBars;
};

LateEvent::LateEvent(const QString &title)
    : title_(title), description_(EventData::placeholder()), reported(description_),
      outline_(EventData::outlineOf(description_))
{}

LateEvent::~LateEvent() = default;

void LateEvent::setTitle(const QString &text)
{
    title_ = notNull(text);
    known.reset();
}

void LateEvent::setDescription(const QString &text)
{
    description_ = notNull(text);
    outline_ = EventData::outlineOf(description_);
    known.reset();
}

bool LateEvent::report()
{
    if (description_ == reported)
        return false;
    reported = description_;
    return true;
}

LateEvent::Picture &LateEvent::picture(double room)
{
    if (!known)
        known = std::make_unique<Picture>(title_, room);
    return *known;
}

void LateEvent::paintTitle(QPainter &painter, double room)
{
    Picture &seen = picture(room);
    seen.look.paintGreeked(painter, seen.titleBars, title_, seen.titlePlace);
}

void LateEvent::paintDescription(QPainter &painter, double ground)
{
    if (known) // with the title, which is painted first
        STLineEdit::paintGreeked(painter, known->descriptionBars, description_,
                                 EventData::textPlace(outline_), ground);
}
