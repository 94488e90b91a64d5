#include "vtr_conditions.h"
#include "vtr_dependencies.h"
#include "vtr_jobtypes.h"
#include "vtr_renderarguments.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

QByteArray Json(const QString& text)
{
    return QJsonDocument::fromJson(text.toUtf8()).toJson(QJsonDocument::Compact);
}

} // namespace

class TestDialogsLogic : public QObject
{
    Q_OBJECT

private slots:
    void ConditionsHoldOnlyWhatIsFilledIn()
    {
        QCOMPARE(VTSearchConditions({}), QVariantMap());

        VTSearchFields fields;
        fields.strName = QStringLiteral("shot");
        fields.strStatus = QStringLiteral("0");
        fields.endTime = VTTimeRange {QStringLiteral("a"), QString()};
        const QVariantMap expected {{QStringLiteral("job_name"), QStringLiteral("shot")},
            {QStringLiteral("status"), QStringLiteral("0")},
            {QStringLiteral("end_min_time"), QStringLiteral("a")},
            {QStringLiteral("end_max_time"), QString()}};
        QCOMPARE(VTSearchConditions(fields), expected);
    }

    void ConditionTextsAreJson()
    {
        QCOMPARE(Json(VTStatusConditionText(4)), QByteArray("{\"status\":4}"));
        QCOMPARE(Json(VTGroupConditionText({QStringLiteral("g\"1"), QStringLiteral("g2")})),
            QByteArray("{\"job_guid\":\"g\\\"1,g2\"}"));
        QCOMPARE(Json(VTGroupConditionText({})), QByteArray("{\"job_guid\":\"abcdefg\"}"));
        QCOMPARE(Json(VTGroupConditionText({QString()})), QByteArray("{\"job_guid\":\"abcdefg\"}"));
    }

    void FrameRanges_data()
    {
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<int>("check");

        QTest::newRow("one frame") << 10 << 10 << int(VTFrameCheck::Valid);
        QTest::newRow("reversed") << 11 << 10 << int(VTFrameCheck::Reversed);
        QTest::newRow("longest") << 1 << 1001 << int(VTFrameCheck::Valid);
        QTest::newRow("too long") << 1 << 1002 << int(VTFrameCheck::TooLong);
    }

    void FrameRanges()
    {
        QFETCH(int, start);
        QFETCH(int, end);
        QTEST(int(VTCheckFrames({start, end})), "check");
    }

    void JobTypesAreEntriesOfTwoParts()
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("types.ini")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[vtr.rendering]\nmaya=a&b, alone, one&two&three, &\n[other]\nmax=c&d\n");
        file.close();

        const QList<VTJobType> expected {{QStringLiteral("maya"), QStringLiteral("a"), QStringLiteral("b")},
            {QStringLiteral("maya"), QString(), QString()}};
        QCOMPARE(VTReadJobTypes(file.fileName()), expected);
        QVERIFY(VTReadJobTypes(folder.path()).isEmpty());
    }

    void EachSonGroupIsAskedAboutInTurn()
    {
        const QTemporaryDir folder;
        VTDependencies dependencies;
        dependencies.Open(folder.filePath(QStringLiteral("account.ini")));
        QVERIFY(!dependencies.HasQueued());
        QVERIFY(dependencies.Record(
            {QStringLiteral("s1"), QStringLiteral("s2")}, {QStringLiteral("p1&maya"), QStringLiteral("p2")}));
        QVERIFY(dependencies.Record({QStringLiteral("s3")}, {QStringLiteral("p3&povray")}));

        const QVector<VTParentJob> parents = dependencies.TakeNext();
        QCOMPARE(parents.size(), 2);
        QCOMPARE(parents[0].strId, QStringLiteral("p1"));
        QCOMPARE(parents[0].strType, QStringLiteral("maya"));
        QCOMPARE(parents[1].strId, QStringLiteral("p2"));
        QCOMPARE(parents[1].strType, QString());

        QVERIFY(dependencies.Release(QStringLiteral("s3")));
        QVERIFY(dependencies.TakeNext().isEmpty());
        QVERIFY(!dependencies.HasQueued());
        QVERIFY(dependencies.Requeue());
        QCOMPARE(dependencies.TakeNext().size(), 2);
    }

    void SonsAreFreeWhenAllParentsHaveFinished()
    {
        const QTemporaryDir folder;
        VTDependencies dependencies;
        dependencies.Open(folder.filePath(QStringLiteral("account.ini")));
        const QString pair = QStringLiteral("pair");
        const QString later = QStringLiteral("later");
        dependencies.Record({pair}, {QStringLiteral("p1&maya"), QStringLiteral("p2&maya")});

        QVERIFY(dependencies.Finish(QStringLiteral("p2")).isEmpty());
        QVERIFY(dependencies.Finish(QStringLiteral("p")).isEmpty());
        QCOMPARE(dependencies.Finish(QStringLiteral("p1")), QStringList(pair));
        QVERIFY(dependencies.Release(pair));

        // What finished for one group counts for the next.
        dependencies.Record({later}, {QStringLiteral("p1&maya"), QStringLiteral("p3&maya")});
        QCOMPARE(dependencies.Finish(QStringLiteral("p3")), QStringList(later));
    }
};

QTEST_GUILESS_MAIN(TestDialogsLogic)
#include "tst_dialogs_logic.moc"
