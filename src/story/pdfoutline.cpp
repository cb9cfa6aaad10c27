#include "story/pdfoutline.h"

#include <QList>

#include <map>
#include <optional>

namespace {

/// What has to be known of a file before something is appended to it.
struct PdfFrame
{
    int objects = 0; // the number of the next new one
    int root = 0;
    int info = 0;
    qsizetype table = 0; // where the last table of objects begins
    QByteArray catalog;  // what is between the brackets
    QList<int> pages;    // their objects, in order
};

/// The number behind a word that stands in `bytes` after `from`, -1 if there is none.
qsizetype numberBehind(const QByteArray &word, const QByteArray &bytes, qsizetype from)
{
    qsizetype at = bytes.indexOf(word, from);
    if (at == -1)
        return -1;
    at += word.size();
    while (at < bytes.size() && (bytes[at] == ' ' || bytes[at] == '\n'))
        ++at;
    qsizetype end = at;
    while (end < bytes.size() && bytes[end] >= '0' && bytes[end] <= '9')
        ++end;
    bool isNumber = false;
    const qlonglong number = bytes.mid(at, end - at).toLongLong(&isNumber);
    return isNumber ? number : -1;
}

QByteArray bodyOfObject(const QByteArray &pdf, int number)
{
    const QByteArray head = '\n' + QByteArray::number(number) + " 0 obj\n<<";
    const qsizetype at = pdf.lastIndexOf(head);
    const qsizetype end = pdf.indexOf(">>\nendobj", at);
    return at == -1 || end == -1 ? QByteArray() : pdf.mid(at + head.size(), end - at - head.size());
}

std::optional<PdfFrame> frameOf(const QByteArray &pdf)
{
    const qsizetype trailer = pdf.lastIndexOf("\ntrailer");
    if (trailer == -1)
        return {};
    PdfFrame frame;
    frame.objects = int(numberBehind("/Size", pdf, trailer));
    frame.root = int(numberBehind("/Root", pdf, trailer));
    frame.info = int(numberBehind("/Info", pdf, trailer));
    frame.table = numberBehind("startxref", pdf, trailer);
    frame.catalog = bodyOfObject(pdf, frame.root);
    const QByteArray tree = bodyOfObject(pdf, int(numberBehind("/Pages", frame.catalog, 0)));
    const qsizetype kids = tree.indexOf("/Kids");
    const qsizetype from = tree.indexOf('[', kids) + 1;
    const QList<QByteArray> words = tree.mid(from, tree.indexOf(']', from) - from).simplified().split(' ');
    for (qsizetype i = 0; i + 2 < words.size(); i += 3)
        frame.pages << words[i].toInt();
    const bool isWhole =
        frame.objects > 0 && frame.root > 0 && frame.info > 0 && frame.table > 0 && kids != -1;
    return isWhole ? std::optional(frame) : std::nullopt;
}

/// Where a bookmark stands among the others. All are places in the list, -1 for none.
struct Links
{
    int parent = -1;
    int previous = -1;
    int next = -1;
    int first = -1;
    int last = -1;
    int inside = 0; // all that are below it
};

std::vector<Links> linksOf(const std::vector<PdfBookmark> &bookmarks)
{
    std::vector<Links> links(bookmarks.size());
    std::vector<int> open; // from the highest to the one before
    int lastOfAll = -1;
    for (int i = 0; i < int(bookmarks.size()); ++i) {
        while (!open.empty() && bookmarks[open.back()].level >= bookmarks[i].level)
            open.pop_back();
        links[i].parent = open.empty() ? -1 : open.back();
        int &last = open.empty() ? lastOfAll : links[open.back()].last;
        links[i].previous = last;
        if (last != -1)
            links[last].next = i;
        else if (!open.empty())
            links[open.back()].first = i;
        last = i;
        open.push_back(i);
    }
    // From behind, so that what is below has been counted.
    for (int i = int(links.size()) - 1; i >= 0; --i) {
        if (links[i].parent != -1)
            links[links[i].parent].inside += links[i].inside + 1;
    }
    return links;
}

QByteArray textString(const QString &text)
{
    QByteArray hex = "<FEFF";
    for (const QChar unit : text)
        hex += QByteArray::number(unit.unicode(), 16).rightJustified(4, '0').toUpper();
    return hex + '>';
}

/// Appends objects to a file and remembers where they are.
class Appending
{
public:
    explicit Appending(const QByteArray &pdf) : bytes(pdf) { bytes.reserve(pdf.size() + pdf.size() / 4); }

    void add(int number, const QByteArray &body)
    {
        places[number] = bytes.size();
        bytes += QByteArray::number(number) + " 0 obj\n<<" + body + ">>\nendobj\n";
    }

    QByteArray finished(const PdfFrame &frame, int objects)
    {
        const qsizetype table = bytes.size();
        bytes += "xref\n";
        // Each object is a section of its own but those that follow one another.
        for (auto place = places.begin(); place != places.end();) {
            QByteArray section;
            const int first = place->first;
            int count = 0;
            for (; place != places.end() && place->first == first + count; ++place, ++count)
                section += QByteArray::number(place->second).rightJustified(10, '0') + " 00000 n \n";
            bytes += QByteArray::number(first) + ' ' + QByteArray::number(count) + '\n' + section;
        }
        bytes += "trailer\n<<\n/Size " + QByteArray::number(objects) + "\n/Info " +
                 QByteArray::number(frame.info) + " 0 R\n/Root " + QByteArray::number(frame.root) +
                 " 0 R\n/Prev " + QByteArray::number(frame.table) + "\n>>\nstartxref\n" +
                 QByteArray::number(table) + "\n%%EOF\n";
        return bytes;
    }

private:
    QByteArray bytes;
    std::map<int, qsizetype> places;
};

} // namespace

QByteArray withBookmarks(const QByteArray &pdf, const std::vector<PdfBookmark> &bookmarks, double pageHeight)
{
    const std::optional<PdfFrame> frame = frameOf(pdf);
    if (!frame || bookmarks.empty())
        return pdf;
    const std::vector<Links> links = linksOf(bookmarks);
    const int outlines = frame->objects;
    const auto reference = [&](int place) {
        return QByteArray::number(place == -1 ? outlines : outlines + 1 + place) + " 0 R";
    };
    Appending appending(pdf);
    appending.add(frame->root, frame->catalog + "/Outlines " + reference(-1) + "\n/PageMode /UseOutlines\n");
    int lastOfAll = 0;
    for (int i = 0; i < int(links.size()); ++i) {
        if (links[i].parent == -1)
            lastOfAll = i;
    }
    // Only the highest are open, or a long story would be a list without an end.
    int shown = 0;
    for (const Links &each : links)
        shown += each.parent == -1 ? 1 : 0;
    appending.add(outlines, "/Type /Outlines\n/First " + reference(0) + "\n/Last " + reference(lastOfAll) +
                                "\n/Count " + QByteArray::number(shown));
    for (int i = 0; i < int(links.size()); ++i) {
        const PdfBookmark &bookmark = bookmarks[i];
        QByteArray body = "/Title " + textString(bookmark.title) + "\n/Parent " + reference(links[i].parent);
        const auto link = [&](const char *word, int place) {
            if (place != -1)
                body += QByteArray("\n/") + word + ' ' + reference(place);
        };
        link("Prev", links[i].previous);
        link("Next", links[i].next);
        link("First", links[i].first);
        link("Last", links[i].last);
        if (links[i].inside > 0)
            body += "\n/Count " + QByteArray::number(-links[i].inside);
        if (bookmark.page >= 0 && bookmark.page < frame->pages.size()) {
            body += "\n/Dest [" + QByteArray::number(frame->pages[bookmark.page]) + " 0 R /XYZ null " +
                    QByteArray::number(pageHeight - bookmark.top, 'f', 2) + " null]";
        }
        appending.add(outlines + 1 + i, body);
    }
    return appending.finished(*frame, outlines + 1 + int(links.size()));
}
