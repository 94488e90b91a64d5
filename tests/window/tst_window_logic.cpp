#include "common/vtr_codetables.h"
#include "common/vtr_filename.h"
#include "mainwindow/vtr_mapcursor.h"
#include "mainwindow/vtr_pagestate.h"
#include "tests/support/test_tables.h"

#include <limits>
#include <random>

namespace {

/// Name, records, pages and groups.
const std::tuple<const char*, int, int, int> Sizes[] = {{"negative", -1, 1, 1}, {"none", 0, 1, 1},
    {"a page", 18, 1, 1}, {"a page and one", 19, 2, 1}, {"a group", 90, 5, 1}, {"a group and one", 91, 6, 2},
    {"two groups", 180, 10, 2}, {"most", std::numeric_limits<int>::max(), 119304648, 23860930}};

/// Name, page and records; the corrected page and group.
const std::tuple<const char*, int, int, int, int> Deletions[] = {{"emptied", 3, 36, 2, 1},
    {"emptied into the group before", 6, 90, 5, 1}, {"emptied within a later group", 7, 108, 6, 2},
    {"emptied first page", 1, 0, 1, 1}, {"rows left", 6, 91, 6, 2}, {"more than one page gone", 6, 50, 6, 2}};

const std::tuple<const char*, QString, QString> Names[] = {
    {"plain", "Ann 100%, farm-1.example"_s, "Ann 100%, farm-1.example"_s},
    {"letters", "ä王"_s, "ä王"_s},
    {"way out", "../../x"_s, "..%2F..%2Fx"_s},
    {"one dot", "."_s, "%2E"_s},
    {"two dots", ".."_s, "%2E%2E"_s},
    {"port", "farm:8080\\a"_s, "farm%3A8080%5Ca"_s},
    {"reserved", "*?\"<>|"_s, "%2A%3F%22%3C%3E%7C"_s},
    {"control", "a\n\0\x7f"_s, "a%0A%00%7F"_s},
};

} // namespace

/// The window's types that need no widgets: page states, places in maps, file names and progress colours.
class TestWindowLogic : public QObject
{
    Q_OBJECT

private slots:
    void CountsPagesAndGroups_data() { AddRows(Sizes); }
    void CountsPagesAndGroups()
    {
        const auto& [name, records, pages, groups] = Row(Sizes);
        VTPageState state;
        state.nCurrentPage = 3;
        state.Recount(records);
        QCOMPARE(state.nTotalPages, pages);
        QCOMPARE(state.nTotalGroups, groups);
        QCOMPARE(state.nTotalRecords, records);
        QCOMPARE(state.nCurrentPage, 3);
        QCOMPARE(state.HasNextGroup(), pages > 5);
        QVERIFY(!state.HasPreviousGroup());
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
        const auto Below = [&random](int limit) { return int(random() % unsigned(limit)); };
        QVariantMap map;
        VTMapCursor cursor;
        for (int round = 0; round < 4000; ++round) {
            if (Below(4) == 0) {
                const QString key = QString::number(Below(300));
                if (map.remove(key) == 0)
                    map.insert(key, round);
                cursor.Forget();
            }
            const int index = Below(320) - 10;
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
        const QString file = VTAccountFile("Data"_s, text, text);
        QCOMPARE(QDir::cleanPath(file), file);
        QCOMPARE(QFileInfo(file).path(), QCoreApplication::applicationDirPath() + "/Data"_s);
    }

    void ColoursProgressByBand()
    {
        VTCodeTables tables;
        tables.Load();
        const QMap<int, QString> colours {{-50, {}}, {-1, "rgb(255,99,79)"_s}, {0, "rgb(255,99,79)"_s},
            {49, "rgb(255,99,79)"_s}, {50, "rgb(255,161,94)"_s}, {99, "rgb(255,161,94)"_s},
            {100, "rgb(125,180,75)"_s}, {150, {}}};
        for (auto band = colours.begin(); band != colours.end(); ++band) {
            const QString style = tables.ProgressStyle(band.key());
            QVERIFY2(style.contains(band.value()), qPrintable(style));
            QCOMPARE(style.isEmpty(), band.value().isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(TestWindowLogic)
#include "tst_window_logic.moc"
