#pragma once

#include <memory>

class QTextDocument;
struct ExportOptions;
struct Story;

/// The story as a document for printing, which both PDF and ODT are made of: a heading for each tab and
/// event, with its level, and a paragraph for each line of text.
std::unique_ptr<QTextDocument> documentOf(const Story &story, const ExportOptions &options);
