#include "story/jsonlines.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

/// Goes through a sound text from one value to the next.
class Walk
{
public:
    Walk(const QByteArray &json, const JsonPlace &from) : text(json), place(from) {}

    /// Where the next value or name begins, or a bracket ends what is walked through.
    const JsonPlace &next()
    {
        while (isAtAny(" \t\r\n,:"))
            step();
        return place;
    }
    bool isAtEnd() const { return place.at < 0 || place.at >= text.size(); }
    bool isAtAny(QByteArrayView signs) const { return !isAtEnd() && signs.contains(text[place.at]); }
    void step()
    {
        if (isAtAny("\n"))
            ++place.line;
        ++place.at;
    }
    /// Passes over the value, or name, that begins here.
    void skip()
    {
        int open = 0;
        do {
            next();
            if (isAtAny("\""))
                skipText();
            else if (isAtAny("[{]}"))
                skipBracket(open);
            else
                skipWord();
        } while (open > 0 && !isAtEnd());
    }

private:
    void skipBracket(int &open)
    {
        open += isAtAny("[{") ? 1 : -1;
        step();
    }
    void skipText()
    {
        step();
        while (!isAtEnd() && !isAtAny("\"")) {
            if (isAtAny("\\"))
                step(); // the parser takes any sign behind it, the end of a line as well
            step();
        }
        step();
    }
    void skipWord()
    {
        while (!isAtEnd() && !isAtAny(" \t\r\n,:]}"))
            step();
    }

    const QByteArray &text;
    JsonPlace place;
};

/// With what its escapes stand for.
QString nameOf(const QByteArray &quoted)
{
    return QJsonDocument::fromJson('[' + quoted + ']').array().first().toString();
}

} // namespace

JsonPlace JsonLines::document() const
{
    Walk walk(text, {0, 1});
    return walk.next();
}

std::vector<JsonPlace> JsonLines::items(const JsonPlace &list) const
{
    std::vector<JsonPlace> all;
    Walk walk(text, list);
    if (!walk.isAtAny("["))
        return all;
    walk.step();
    for (JsonPlace item = walk.next(); !walk.isAtEnd() && !walk.isAtAny("]"); item = walk.next()) {
        all.push_back(item);
        walk.skip();
    }
    return all;
}

QHash<QString, JsonPlace> JsonLines::members(const JsonPlace &object) const
{
    QHash<QString, JsonPlace> all;
    Walk walk(text, object);
    if (!walk.isAtAny("{"))
        return all;
    walk.step();
    for (JsonPlace name = walk.next(); !walk.isAtEnd() && !walk.isAtAny("}"); name = walk.next()) {
        walk.skip();
        // Behind the name stands a colon, which next() passes over.
        const QByteArray quoted = text.mid(name.at, walk.next().at - name.at);
        all.insert(nameOf(quoted.first(quoted.lastIndexOf('"') + 1)), walk.next());
        walk.skip();
    }
    return all;
}
