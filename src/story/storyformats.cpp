#include "story/storyformats.h"

#include "story/formats.h"
#include "story/story.h"
#include "story/storyformat.h"

#include <QFileInfo>

#include <algorithm>

const std::vector<const StoryFormat *> &StoryFormats::all()
{
    static const std::vector<const StoryFormat *> formats{
        &markdownFormat(), &textFormat(), &htmlFormat(), &odtFormat(), &pdfFormat(),
        &opmlFormat(),     &jsonFormat(), &csvFormat(),  &dotFormat(), &tweeFormat(),
    };
    return formats;
}

const StoryFormat *StoryFormats::named(const QString &name)
{
    const auto isIt = [&name](const StoryFormat *format) { return format->name() == name; };
    const auto found = std::find_if(all().begin(), all().end(), isIt);
    return found == all().end() ? nullptr : *found;
}

const StoryFormat *StoryFormats::forFile(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    const auto isIt = [&suffix](const StoryFormat *format) { return format->suffixes().contains(suffix); };
    const auto found = std::find_if(all().begin(), all().end(), isIt);
    return found == all().end() ? nullptr : *found;
}

QStringList StoryFormats::names()
{
    QStringList all;
    for (const StoryFormat *format : StoryFormats::all())
        all << format->name();
    return all;
}

Telling::Telling(const Story &story, const ExportOptions &options) : tell(options.tell)
{
    for (std::size_t i = 0; i < story.tabs.size(); ++i)
        count += options.wants(int(i)) ? double(story.tabs[i].events.size()) : 0;
}

void Telling::next()
{
    if (tell)
        tell(++written / count);
}
