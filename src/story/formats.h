#pragma once

class StoryFormat;

// Each is made in its own file, src/story/<name>format.cpp.
const StoryFormat &csvFormat();
const StoryFormat &dotFormat();
const StoryFormat &htmlFormat();
const StoryFormat &jsonFormat();
const StoryFormat &markdownFormat();
const StoryFormat &odtFormat();
const StoryFormat &opmlFormat();
const StoryFormat &pdfFormat();
const StoryFormat &textFormat();
const StoryFormat &tweeFormat();
