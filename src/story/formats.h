#pragma once

class StoryFormat;

// Each is made in its own file, src/story/<name>format.cpp.
const StoryFormat &jsonFormat();
const StoryFormat &markdownFormat();
