#include "vtr_codetables.h"
#include "vtr_filename.h"
#include "vtr_mapwindow.h"
#include "vtr_pagestate.h"

#include <QtTest>

#include <limits>
#include <random>

/// Types of the window that need no window: page positions, places in maps, file names, bands.
class TestWindowLogic : public QObject
{
    Q_OBJECT

private slots:
    void countsPagesAndGroups_data()
    {
        QTest::addColumn<int>("records");
        QTest::addColumn<int>("pages");
        QTest::addColumn<int>("groups");
        QTest::newRow("negative") << -1 << 1 << 1;
        QTest::newRow("none") << 0 << 1 << 1;
        QTest::newRow("one") << 1 << 1 << 1;
        QTest::newRow("a page") << 18 << 1 << 1;
        QTest::newRow("a page and one") << 19 << 2 << 1;
        QTest::newRow("a group") << 90 << 5 << 1;
        QTest::newRow("a group and one") << 91 << 6 << 2;
        QTest::newRow("two groups") << 180 << 10 << 2;
        QTest::newRow("most") << std::numeric_limits<int>::max() << 119304648 << 23860930;
    }

    void countsPagesAndGroups()
    {
        QFETCH(int, records);
        QFETCH(int, pages);
        QFETCH(int, groups);
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

    void correctsItsPageAfterADeletion_data()
    {
        QTest::addColumn<int>("page");
        QTest::addColumn<int>("records");
        QTest::addColumn<int>("newPage");
        QTest::addColumn<int>("newGroup");
        QTest::newRow("emptied") << 3 << 36 << 2 << 1;
        QTest::newRow("emptied into the group before") << 6 << 90 << 5 << 1;
        QTest::newRow("emptied within a later group") << 7 << 108 << 6 << 2;
        QTest::newRow("emptied first page") << 1 << 0 << 1 << 1;
        QTest::newRow("rows left") << 6 << 91 << 6 << 2;
        QTest::newRow("more than one page gone") << 6 << 50 << 6 << 2;
    }

    void correctsItsPageAfterADeletion()
    {
        QFETCH(int, page);
        QFETCH(int, records);
        VTPageState state;
        state.nCurrentPage = page;
        state.nCurrentGroup = (page + 4) / 5;
        state.nTotalRecords = records;
        state.CorrectAfterDeletion();
        QTEST(state.nCurrentPage, "newPage");
        QTEST(state.nCurrentGroup, "newGroup");
    }

    void findsPlacesInAMapThatChanges()
    {
        std::mt19937 random(5);
        const auto Below = [&random](int limit) { return int(random() % unsigned(limit)); };
        QVariantMap map;
        VTMapWindow window;
        for (int round = 0; round < 4000; ++round) {
            if (Below(4) == 0) {
                const QString key = QString::number(Below(300));
                if (map.remove(key) == 0)
                    map.insert(key, round);
                window.Forget();
            }
            const int index = Below(320) - 10;
            const auto place = window.At(map, index);
            const QStringList keys = map.keys();
            if (index < 0 || index >= keys.size())
                QVERIFY(place == map.constEnd());
            else
                QCOMPARE(place.key(), keys.at(index));
        }
    }

    void encodesWhatCannotStandInAFileName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("encoded");
        QTest::newRow("plain") << "Ann 100%, farm-1.example"
                               << "Ann 100%, farm-1.example";
        QTest::newRow("letters") << QStringLiteral(u"\u00e4\u738b") << QStringLiteral(u"\u00e4\u738b");
        QTest::newRow("way out") << "../../x"
                                 << "..%2F..%2Fx";
        QTest::newRow("one dot") << "."
                                 << "%2E";
        QTest::newRow("two dots") << ".."
                                  << "%2E%2E";
        QTest::newRow("port") << "farm:8080\\a"
                              << "farm%3A8080%5Ca";
        QTest::newRow("reserved") << "*?\"<>|"
                                  << "%2A%3F%22%3C%3E%7C";
        QTest::newRow("control") << QString::fromLatin1("a\n\0\x7f", 4) << "a%0A%00%7F";
    }

    void encodesWhatCannotStandInAFileName()
    {
        QFETCH(QString, name);
        QTEST(VTFileNamePart(name), "encoded");
        const QString file = VTAccountFile(QStringLiteral("Data"), name, name);
        const QString folder = QCoreApplication::applicationDirPath() + QStringLiteral("/Data");
        QCOMPARE(QDir::cleanPath(file), file);
        QCOMPARE(QFileInfo(file).path(), folder);
    }

    void coloursProgressByBand_data()
    {
        QTest::addColumn<int>("percent");
        QTest::addColumn<QString>("colour");
        const QString red = QStringLiteral("rgb(255,99,79)");
        const QString orange = QStringLiteral("rgb(255,161,94)");
        QTest::newRow("-1") << -1 << red;
        QTest::newRow("0") << 0 << red;
        QTest::newRow("49") << 49 << red;
        QTest::newRow("50") << 50 << orange;
        QTest::newRow("99") << 99 << orange;
        QTest::newRow("100") << 100 << QStringLiteral("rgb(125,180,75)");
        QTest::newRow("150") << 150 << QString();
        QTest::newRow("-50") << -50 << QString();
    }

    void coloursProgressByBand()
    {
        QFETCH(int, percent);
        QFETCH(QString, colour);
        VTCodeTables tables;
        tables.Load();
        QCOMPARE(tables.ProgressStyle(percent).count(colour), colour.isEmpty() ? 1 : 3);
        QCOMPARE(tables.ProgressStyle(percent).isEmpty(), colour.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestWindowLogic)
#include "tst_window_logic.moc"
