#include "common/vtr_filename.h"
#include "mainwindow/vtr_mapcursor.h"
#include "mainwindow/vtr_pagestate.h"
#include "tests/support/test_tables.h"

#include <limits>
#include <random>

namespace {

/// Name, records, pages and groups.
const std::tuple<const char*, int, int, int> Sizes[]
    = {{"negative", -1, 1, 1}, {"a page", 18, 1, 1}, {"a page and one", 19, 2, 1}, {"a group", 90, 5, 1},
        {"a group and one", 91, 6, 2}, {"most", std::numeric_limits<int>::max(), 119304648, 23860930}};

/// Name, page and records; the corrected page and group.
const std::tuple<const char*, int, int, int, int> Deletions[] = {{"emptied", 3, 36, 2, 1},
    {"emptied into the group before", 6, 90, 5, 1}, {"emptied first page", 1, 0, 1, 1},
    {"rows left", 6, 91, 6, 2}, {"more than one page gone", 6, 50, 6, 2}};

const std::tuple<const char*, QString, QString> Names[] = {
    {"plain", "Ann 100%, farm-1.example"_s, "Ann 100%, farm-1.example"_s},
    {"way out", "../../x"_s, "..%2F..%2Fx"_s},
    {"two dots", ".."_s, "%2E%2E"_s},
    {"port", "farm:8080\\a"_s, "farm%3A8080%5Ca"_s},
    {"reserved", "*?\"<>|"_s, "%2A%3F%22%3C%3E%7C"_s},
    {"control", "a\n\0\x7f"_s, "a%0A%00%7F"_s},
};

} // namespace

/// The window's types that need no widgets: page states, places in maps and file names.
class TestWindowLogic : public QObject
{
    Q_OBJECT

private slots:
    void CountsPagesAndGroups_data() { AddRows(Sizes); }
    void CountsPagesAndGroups()
    {
        const auto& [name, records, pages, groups] = Row(Sizes);
        VTPageState state;
        state.Recount(records);
        QCOMPARE(state.nTotalPages, pages);
        QCOMPARE(state.nTotalGroups, groups);
    }

    void CorrectsItsPageAfterADeletion_data() { AddRows(Deletions); }
    void CorrectsItsPageAfterADeletion()
    {
        const auto& [name, page, records, newPage, newGroup] = Row(Deletions);
        VTPageState state;
        state.nCurrentPage = page;
        state.nCurrentGroup = (page + 4) / 5;
        state.nTotalRecords = records;
        state.CorrectAfterDeletion();
        QCOMPARE(state.nCurrentPage, newPage);
        QCOMPARE(state.nCurrentGroup, newGroup);
    }

    void FindsPlacesInAMapThatChanges()
    {
        std::mt19937 random(5);
        QVariantMap map;
        VTMapCursor cursor;
        for (int round = 0; round < 4000; ++round) {
            if (random() % 4 == 0) {
                const QString key = QString::number(random() % 300);
                if (map.remove(key) == 0)
                    map.insert(key, round);
                cursor.Forget();
            }
            const int index = int(random() % 320) - 10;
            const auto place = cursor.At(map, index);
            const QStringList keys = map.keys();
            if (index < 0 || index >= keys.size())
                QVERIFY(place == map.constEnd());
            else
                QCOMPARE(place.key(), keys.at(index));
        }
    }

    void EncodesCharactersThatFileNamesLack_data() { AddRows(Names); }
    void EncodesCharactersThatFileNamesLack()
    {
        const auto& [name, text, encoded] = Row(Names);
        QCOMPARE(VTFileNamePart(text), encoded);
    }
};

QTEST_GUILESS_MAIN(TestWindowLogic)
#include "tst_window_logic.moc"
