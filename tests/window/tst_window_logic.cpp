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

/// Name, page of the current one, number of pages, the step, and the page reached; 0 where the step is refused.
const std::tuple<const char*, int, int, VTPageState::Step, int> Steps[]
    = {{"next page", 5, 6, VTPageState::Step::NextPage, 6},
        {"next page of the last", 6, 6, VTPageState::Step::NextPage, 0},
        {"previous page", 6, 6, VTPageState::Step::PreviousPage, 5},
        {"previous page of the first", 1, 6, VTPageState::Step::PreviousPage, 0},
        {"next group", 2, 6, VTPageState::Step::NextGroup, 6},
        {"next group of the last", 6, 6, VTPageState::Step::NextGroup, 0},
        {"previous group", 11, 11, VTPageState::Step::PreviousGroup, 10},
        {"back from beyond the end", 9, 3, VTPageState::Step::PreviousPage, 3},
        {"a group back from beyond the end", 9, 3, VTPageState::Step::PreviousGroup, 3},
        {"on from beyond the end", 9, 3, VTPageState::Step::NextPage, 0},
        {"a group on from beyond the end", 9, 3, VTPageState::Step::NextGroup, 0}};

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

    void StepsThroughThePages_data() { AddRows(Steps); }
    void StepsThroughThePages()
    {
        const auto& [name, page, pages, step, reached] = Row(Steps);
        VTPageState state;
        state.Recount(pages * VTPageSize);
        state.nCurrentPage = page;
        state.nCurrentGroup = (page + 4) / 5;
        QCOMPARE(state.Move(step), reached > 0);
        QCOMPARE(state.nCurrentPage, reached > 0 ? reached : page);
        QCOMPARE(state.nCurrentGroup, (state.nCurrentPage + 4) / 5);
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
