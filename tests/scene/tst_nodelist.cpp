#include "support/testsupport.h"

#include "items/node.h"
#include "scene/nodelist.h"

#include <array>
#include <random>

// A list that closes its gaps when somebody looks shows the same as one that closes them at once.

class tst_NodeList : public TestCase
{
    Q_OBJECT

private slots:
    void isWhatAPlainListIs();
    void nodeThatComesBackIsListed();
};

void tst_NodeList::isWhatAPlainListIs()
{
    std::array<Node, 12> all{Node(0), Node(0), Node(0), Node(0), Node(0), Node(0),
                             Node(0), Node(0), Node(0), Node(0), Node(0), Node(0)};
    std::mt19937 random(20);
    NodeList list;
    std::vector<Node *> plain;
    for (int i = 0; i < 3000; ++i) {
        Node *node = &all.at(random() % all.size());
        const auto found = std::find(plain.begin(), plain.end(), node);
        if (random() % 60 == 0) {
            list.clear();
            plain.clear();
        } else if (random() % 2 == 0) {
            list.remove(node);
            if (found != plain.end())
                plain.erase(found);
        } else if (found == plain.end()) {
            list.add(node);
            plain.push_back(node);
        }
        if (random() % 4 == 0) {
            QCOMPARE(list.nodes(), plain);
            QCOMPARE(list.isEmpty(), plain.empty());
        }
    }
}

// A new node may stand in memory where one stood that has gone meanwhile.
void tst_NodeList::nodeThatComesBackIsListed()
{
    Node first(0);
    Node second(0);
    NodeList list;
    list = std::vector<Node *>{&first, &second};
    list.remove(&first);
    list.add(&first);
    QCOMPARE(list.nodes(), (std::vector<Node *>{&second, &first}));
    list.remove(&first);
    list = std::vector<Node *>{&first};
    QCOMPARE(list.nodes(), std::vector<Node *>{&first});
}

QTEST_MAIN(tst_NodeList)
#include "tst_nodelist.moc"
