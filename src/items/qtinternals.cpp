#include "items/qtinternals.h"

#include <QGraphicsTextItem>
#include <QMetaProperty>

namespace {
constexpr const char *takesFormats = "acceptRichText";
} // namespace

bool QtInternals::takePlainTextOnly(QGraphicsTextItem &item)
{
    bool done = false;
    for (QObject *part : item.children()) {
        const int property = part->metaObject()->indexOfProperty(takesFormats);
        if (property >= 0)
            done = part->metaObject()->property(property).write(part, false) || done;
    }
    return done;
}
