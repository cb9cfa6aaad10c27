#include "story/importsupport.h"

// What becomes of outlines, tables and passages, and what comes back of a story that was written as such.

class tst_ImportOthers : public TestCase
{
    Q_OBJECT

private slots:
    void textBecomesAStory_data();
    void textBecomesAStory();
    void textWithoutAStoryIsRefused_data();
    void textWithoutAStoryIsRefused();
    void storyComesBack_data();
    void storyComesBack();

private:
    StoryFolder folder;
};

void tst_ImportOthers::textBecomesAStory_data()
{
    const ImportedRows row;
    const QString opml = QStringLiteral("opml");
    row("outlines", opml,
        "<opml><body><outline text='A' _note='one&#10;two'><outline text='B'/><outline text='C'/></outline>"
        "<outline text='D' important='true'/></body></opml>",
        {QStringLiteral("0A=one\ntwo 1/B 1C 0D!.")});
    row("outlines as written here", opml,
        "<opml><body><outline text='Story 1' type='story'><outline text='A' end='true'>"
        "<outline text='B' branch='true'/><outline text='C' branch='true'/></outline><outline text='D'/>"
        "<outline text='E' loose='true'/></outline><outline text='Story 2' type='story'/></body></opml>",
        {QStringLiteral("0A. 1/D 1/B 1/C 0~E"), QString()});
    row("outlines with more", opml,
        "<opml><body>\n<outline text='A' created='now'/>\n<outline title='B' created='now' end='true'/>"
        "<outline text='C' end='true'/></body></opml>",
        {QStringLiteral("0A 0B. 1/C")},
        {QStringLiteral("line 3: a second end of the story is left out"),
         QStringLiteral("line 2: the attribute created is left out; so in 2 places")});

    row("outlines of other programs", opml,
        "<opml version='2.0'><head>\n<title>T</title>\n<ownerName>x\n</ownerName><windowTop/></head>\n<body>"
        "more\n<outline text='A' title='A' important='yes'/>\n<outline text='B' title='C'\n_note='n' "
        "description='d'/><p/></body></opml>",
        {QStringLiteral("0A 0B=n.")},
        {QStringLiteral("line 6: important is neither true nor false and is left out"),
         QStringLiteral("line 5: text between the outlines is left out"),
         QStringLiteral("line 7: the attribute description is left out"),
         QStringLiteral("line 7: the attribute title is left out"),
         QStringLiteral("line 3: the element ownerName is left out"),
         QStringLiteral("line 8: the element p is left out"),
         QStringLiteral("line 2: the title of the whole is left out")});
    row("outlines with names of tabs", opml,
        "<opml><head><title>T</title></head><body>\n<outline type='story' text='Prologue' mood='x'>\n"
        "<outline text='A'/></outline></body></opml>",
        {QStringLiteral("0A.")},
        {QStringLiteral("line 2: the attribute mood is left out"),
         QStringLiteral("line 2: the name of the tab \"Prologue\" is left out, for tabs have numbers only")});

    const QString csv = QStringLiteral("csv");
    row("rows", csv, "Title,Text\r\nA,\"one\r\n\"\"two\"\"\"\r\n\r\nB\r\n",
        {QStringLiteral("0A=one\n\"two\" 0B.")});
    row("rows in another encoding", csv, "title\nCaf\xE9\nB\n\xFC\xC3\n",
        {QStringLiteral("0Caf\uFFFD 0B 0\uFFFD\uFFFD.")},
        {QStringLiteral("line 2: letters that are no UTF-8 are left out; so in 2 places")});
    row("rows with names", csv, "id,title\np-1,A\np-2,B\np-2,C\n", {QStringLiteral("0A 0B 0C.")},
        {QStringLiteral("line 2: index is no whole number; the event gets one; so in 3 places")});
    row("rows that are fed by names", csv, "id,title,fed_by\nb,B,a\na,A,\n7,C,b\n,D,7\n,E,nobody\na,F,a\n",
        {QStringLiteral("0A 1/F 0B 0C 0D. 0~E")},
        {QStringLiteral("line 2: index is no whole number; the event gets one; so in 3 places"),
         QStringLiteral("line 5: \"D\" has no number of its own and becomes event 2"),
         QStringLiteral("line 6: \"E\" has no number of its own and becomes event 3"),
         QStringLiteral("line 7: connections from a second event called \"a\" lead from the first"),
         QStringLiteral("line 6: \"E\" is fed by event \"nobody\", which is not there; that is left out")});
    row("rows of the same number", csv, "id,title\n1,A\n1,B\n,C\n", {QStringLiteral("0A 0B 0C.")},
        {QStringLiteral("line 3: \"B\" has no number of its own and becomes event 0"),
         QStringLiteral("line 4: \"C\" has no number of its own and becomes event 2")});
    row("rows of the number that means none", csv, "title,index,fed_by\nA,-1,\nB,-2,-1\n",
        {QStringLiteral("0A. 0~B")},
        {QStringLiteral("line 2: \"A\" has no number of its own and becomes event 0"),
         QStringLiteral("line 3: \"B\" is fed by event -1, which is not there; that is left out")});
    row("rows that share a name", csv, "id,title,fed_by\na,A,\nb,B,a\nb,C,a\nb,D,a\na,E,\na,F,b\n,G,b\n",
        {QStringLiteral("0A 1/C 1/D 0B 1/G 0F. 0~E")},
        {QStringLiteral("line 2: index is no whole number; the event gets one; so in 6 places"),
         QStringLiteral("line 8: \"G\" has no number of its own and becomes event 6"),
         QStringLiteral("line 6: connections from a second event called \"a\" lead from the first"),
         QStringLiteral("line 4: connections from a second event called \"b\" lead from the first")});
    row("rows with other words", csv,
        "title,end,important\nA,maybe,No\nB,YES,never\nC,0,x\nD,false, perhaps\n",
        {QStringLiteral("0A 0B. 1/C! 1D")},
        {QStringLiteral("line 2: end is neither 1 nor 0 and is left out"),
         QStringLiteral("line 3: important is neither 1 nor 0 and is left out; so in 2 places")});
    row("rows of one column", csv, "title\n\n\"\"\n\r\nB\n\"\"", {QStringLiteral("0 0B 0.")});
    row("rows that end in a return", csv, "title,text\n\"A\",\"one\r\"\nB,two\r\n",
        {QStringLiteral("0A=one\n 0B=two.")});
    row("rows that are fed", csv,
        "tab;index;title;fed_by;end;important\nx;1;A;;0;1\nx;2;B;1;1;0\nx;3;C;1;0;0\ny;1;D;;;\n",
        {QStringLiteral("0A! 1/C 0B."), QStringLiteral("0D.")},
        {QStringLiteral("line 2: the name of the tab \"x\" is left out, for tabs have numbers only"),
         QStringLiteral("line 5: the name of the tab \"y\" is left out, for tabs have numbers only")});
    row("rows that look like places of a message", csv, "title,index,fed_by\n%2,1,9\n%2,,\n",
        {QStringLiteral("0%2. 0~%2")},
        {QStringLiteral("line 3: \"%2\" has no number of its own and becomes event 0"),
         QStringLiteral("line 2: \"%2\" is fed by event 9, which is not there; that is left out")});
    row("rows with faults", csv,
        "title,index,fed_by,end,mood\nA,1,3,x,sad\nB,1,9,x\nC,y,2,,,z\nD,3,1,,\nE,4,4,,\n",
        {QStringLiteral("0D 0A. 0~B 0~C 0~E")},
        {QStringLiteral("line 4: index is no whole number; the event gets one"),
         QStringLiteral("line 1: the column \"mood\" is left out"),
         QStringLiteral("line 4: what stands behind the last column is left out"),
         QStringLiteral("line 3: \"B\" has no number of its own and becomes event 0"),
         QStringLiteral("line 3: a second end of the story, \"B\", is left out"),
         QStringLiteral("line 3: \"B\" is fed by event 9, which is not there; that is left out"),
         QStringLiteral("line 4: \"C\" is fed by event 2, which is not there; that is left out"),
         QStringLiteral("line 5: the way from \"A\" to \"D\" closes a circle and is left out"),
         QStringLiteral("line 6: the way from \"E\" to \"E\" closes a circle and is left out")});

    const QString twee = QStringLiteral("twee");
    row("passages", twee,
        ":: StoryTitle\nx\n\n:: StoryData\n{\"start\": \"A\"}\n\n:: A [important]\none &lt;two&gt;\n\n"
        "[[B]]\n[[C]]\n\n:: B\nGo [[on->D]] or [[D<-there]] or [[up|D]].\n\n:: C\n\n:: D\nend\n",
        {QStringLiteral("0A=one <two>! 1/C 0B=Go on or there or up. 0D=end.")},
        {QStringLiteral("line 1: the title of the whole is left out")});
    row("passages with more", twee,
        ":: StoryData\n{\"ifid\": \"X\", \"format\": \"y\"}\n:: A {\"position\":\"5,6\",\"size\":\"7,8\"}\n"
        "[[B][$x = 1]]\n:: B {\"position\":\"5\"}\n:: C {x\n",
        {QStringLiteral("0A 0B. 0~C")},
        {QStringLiteral("line 6: data that is no JSON object is left out"),
         QStringLiteral("line 3: places are not said of every passage and are left out"),
         QStringLiteral("line 1: the data \"format\" is left out"),
         QStringLiteral("line 5: the data \"position\" is left out"),
         QStringLiteral("line 3: the data \"size\" is left out"),
         QStringLiteral("line 4: what a link sets is left out")});
    row("brackets that are no links", twee, ":: A\n[[]] [[\n]] [[[B]]] [[B]]\n:: B\n" + QByteArray(8, '['),
        {QStringLiteral("0A=[[]] [[\n]] [B] B 0B=[[[[[[[[.")},
        {QStringLiteral("line 3: a link to \"[B]\", which is no passage here, is left out")});
    row("passages in another encoding", twee, ":: Caf\xE9\n", {QStringLiteral("0Caf\uFFFD.")},
        {QStringLiteral("line 1: letters that are no UTF-8 are left out")});
    row("passages without data", twee, ":: C\n:: Start\n[[B]]\n:: B\n[[Start]]\n",
        {QStringLiteral("0Start 0B. 0~C")},
        {QStringLiteral("line 5: the way from \"B\" to \"Start\" closes a circle and is left out")});
    row("passages with many tags", twee, ":: A [tab-9 %2 tab-1]\n[[B]]\n:: B [tab-1 %2]\n",
        {QStringLiteral("0A 0B.")}, {QStringLiteral("line 1: the tag \"%2\" is left out; so in 2 places")});
    row("passages with circles", twee,
        "x\n:: A\\[1\\] [end-of-story sad] {\"position\":\"5,6\"}\n[[B]]\n[[nowhere]]\n:: B\n[[A[1]]]\n:: B\n"
        "[[C]]\n:: C\n[[C]]\n:: code [script]\n",
        {QStringLiteral("0A[1]. 1/B 0~B 0C")},
        {QStringLiteral("line 4: a link to \"nowhere\", which is no passage here, is left out"),
         QStringLiteral("line 7: links to a second passage of the same name lead to the first"),
         QStringLiteral("line 2: places are not said of every passage and are left out"),
         QStringLiteral("line 11: scripts and style sheets are left out"),
         QStringLiteral("line 2: the tag \"sad\" is left out"),
         QStringLiteral("line 1: what stands before the first passage is left out"),
         QStringLiteral("line 10: a second way into \"C\" is left out, that from \"C\""),
         QStringLiteral("line 6: the way from \"B\" to \"A[1]\" closes a circle and is left out")});
}

void tst_ImportOthers::textBecomesAStory() { checkImported(folder); }

void tst_ImportOthers::textWithoutAStoryIsRefused_data()
{
    const RefusedRows row;
    row("no.opml", "<opml>\n<a></opml>", QStringLiteral("line 2: Opening and ending tag mismatch."));
    row("no.opml", "<html/>", QStringLiteral("is no OPML"));
    row("no.csv", "", QStringLiteral("has no line that says what the columns are"));
    row("no.csv", "a,b\n1,2\n", QStringLiteral("line 1: no column is called title"));
    row("no.csv", "title\nx\n\"y\nz", QStringLiteral("line 3: a quotation mark is never closed"));
    row("no.csv", "title\n", QStringLiteral("has no events"));
    row("no.twee", "x", QStringLiteral("has no passage: no line begins with ::"));
}

void tst_ImportOthers::textWithoutAStoryIsRefused() { checkRefused(folder); }

void tst_ImportOthers::storyComesBack_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("hasPlaces");
    QTest::newRow("opml") << QStringLiteral("opml") << QStringList(QStringLiteral("--branches")) << false;
    QTest::newRow("csv") << QStringLiteral("csv") << QStringList() << true;
    QTest::newRow("twee") << QStringLiteral("twee") << QStringList() << true;
}

void tst_ImportOthers::storyComesBack()
{
    QFETCH(const QString, format);
    QFETCH(const QStringList, options);
    QFETCH(const bool, hasPlaces);
    StoryTab tab = branchedTab();
    const QStringList texts{QStringLiteral("<b> & \"c\" 'd' &amp;"),
                            QStringLiteral("\n[[x->y]]\n\n:: z"),
                            QStringLiteral("a, \U0001F600; \u05E9\u2028\ttab"),
                            QString(),
                            QStringLiteral("[two]\nlines {x} \\ |"),
                            QStringLiteral("a]]]b"),
                            QStringLiteral("a][b"),
                            QStringLiteral("\uFEFFa\rb\u2029c\r\nd")};
    for (int i = 0; i < texts.size(); ++i) {
        tab.events[std::size_t(i)].title = texts[i];
        tab.events[std::size_t(i)].description = texts[i];
    }
    for (std::size_t i = 0; i < tab.events.size(); ++i)
        tab.events[i].position = QPointF(600.25 * double(i), 100.5);
    const QString scene = folder.put(QStringLiteral("told.scene"), sceneBytes({tab, branchedTab()}));
    const QString text = folder.path(QStringLiteral("told.") + format);
    const QStringList arguments{QStringLiteral("export"), scene, QStringLiteral("-o"), text};
    QCOMPARE(runCommand(arguments + options).code, 0);
    StoryReader reader;
    reader.read(scene);
    const Story before = reader.story();
    const QString again = QStringLiteral("again.") + format;
    const Imported made = imported(folder, again, readFile(text));
    QCOMPARE(made.notes, QStringList());
    QCOMPARE(made.tabs.size(), qsizetype(before.tabs.size()));
    for (std::size_t i = 0; i < before.tabs.size(); ++i)
        QCOMPARE(made.tabs[qsizetype(i)], told(before.tabs[i]));
    QVERIFY(made.isClear);
    reader.read(folder.path(again + QStringLiteral(".scene")));
    const Story after = reader.story();
    for (std::size_t i = 0; hasPlaces && i < tab.events.size(); ++i)
        QCOMPARE(after.tabs[0].events[i].position, tab.events[i].position);
}

QTEST_MAIN(tst_ImportOthers)
#include "tst_importothers.moc"
