#include "host/mainform/main_form.h"
#include "tests/e2e/client_windows.h"
#include "tests/e2e/running_client.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

namespace {

QHash<QString, int> ProgressByJob(const QTableWidget* table)
{
    QHash<QString, int> progress;
    for (int row = 0; row < table->rowCount(); ++row) {
        if (auto* bar = qobject_cast<QProgressBar*>(table->cellWidget(row, 3)))
            progress.insert(table->item(row, 0)->data(Qt::UserRole).toString(), bar->value());
    }
    return progress;
}

bool AnyAdvanced(const QHash<QString, int>& before, const QTableWidget* table)
{
    const QHash<QString, int> now = ProgressByJob(table);
    return std::any_of(now.keyBegin(), now.keyEnd(),
        [&](const QString& job) { return before.contains(job) && now.value(job) > before.value(job); });
}

} // namespace

class TestE2eClient : public QObject
{
    Q_OBJECT

private slots:
    void SignsInShowsAJobAdvanceAndSignsOut();
};

void TestE2eClient::SignsInShowsAJobAdvanceAndSignsOut()
{
    RunningClient client;
    QCOMPARE(client.Start(QStringLiteral("demo")), QString());

    auto* table = Find<QTableWidget>("twtMyRender");
    QVERIFY(table);
    QTRY_COMPARE_WITH_TIMEOUT(table->rowCount(), 18, SignInTime);
    QTRY_VERIFY(table->isVisible());
    QCOMPARE(Find<QLabel>("lblUserName")->text(), QStringLiteral("demo"));
    QTRY_VERIFY(!Find<QLabel>("lblRmb")->text().isEmpty());

    const QHash<QString, int> before = ProgressByJob(table);
    QPushButton* firstPage = Find<QPushButton>("btnPageOne");
    const auto advanced = [&] {
        firstPage->click(); // asks for the page anew, sooner than the timer would
        return AnyAdvanced(before, table);
    };
    QTRY_VERIFY_WITH_TIMEOUT(advanced(), RenderTime);

    Find<QPushButton>("btnNextPage")->click();
    const auto turned = [&] {
        const QHash<QString, int> now = ProgressByJob(table);
        return std::none_of(
            now.keyBegin(), now.keyEnd(), [&](const QString& job) { return before.contains(job); });
    };
    QTRY_VERIFY(turned());

    QMetaObject::invokeMethod(FindMainWindow(), "SignOut");
    QTRY_COMPARE(table->rowCount(), 0);
    QTRY_VERIFY(Find<QPushButton>("btnSignIn")->isVisible());
}

QTEST_MAIN(TestE2eClient)
#include "tst_e2e_client.moc"
