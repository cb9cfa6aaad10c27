#pragma once

class QByteArray;
struct ImportResult;
struct Story;

// How formats are read, each in a file of its own, src/story/<name>reading.cpp. The format hands on to it.

ImportResult readCsv(const QByteArray &text, Story &story);
ImportResult readJson(const QByteArray &text, Story &story);
/// Headings, or in a text without any the items of its lists, are events.
ImportResult readMarkdown(const QByteArray &text, Story &story);
ImportResult readOpml(const QByteArray &text, Story &story);
ImportResult readTwee(const QByteArray &text, Story &story);
