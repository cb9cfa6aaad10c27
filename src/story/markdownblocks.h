#pragma once

#include "story/leftout.h"

#include <QCoreApplication>
#include <QString>

struct cmark_node;

/// The plain text of Markdown's blocks, and what could not become part of one.
class MarkdownBlocks
{
    Q_DECLARE_TR_FUNCTIONS(MarkdownBlocks)

public:
    /// Text within a heading or a paragraph.
    QString textOfLine(cmark_node *block);
    /// Any block: lists keep their bullets, quotes their signs.
    QString textOfBlock(cmark_node *block);
    /// What could not.
    LeftOut &leftOut() { return left; }

private:
    LeftOut left;
};
