#pragma once

#include <functional>
#include <memory>

class QTextDocument;
struct ExportOptions;
struct Story;

/// The story as a document for printing, which both PDF and ODT are made of: a heading for each tab and
/// event, with its level, and a paragraph for each line of text.
std::unique_ptr<QTextDocument> documentOf(const Story &story, const ExportOptions &options);

/// The same in parts, each handed over as soon as it is made, and beginning on a page of its own: a layout
/// counts in 32 bits, of which 11,000 pages at the resolution of paper are all.
void makeDocuments(const Story &story, const ExportOptions &options,
                   const std::function<void(std::unique_ptr<QTextDocument> part)> &take);
