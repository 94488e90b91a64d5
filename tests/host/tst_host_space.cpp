#include "host/app/space_control.h"
#include "host/services/communication_service.h"
#include "host/services/ui_loader_service.h"
#include "tests/host/stand_in_server.h"
#include "tests/hostui/memory_settings.h"
#include "tests/support/test_tables.h"
#include "tests/support/waiting.h"
#include "vtr_messagboxinterface.h"

#include <QtTest>
#include <QtWidgets>

namespace {

/// The data of an answer, and what it says.
const std::tuple<const char*, QByteArray, QString> answers[] = {
    {"no object", "[]", "none"_s},
    {"no quota", "{'used': 5}", "none"_s},
    {"odd values",
        "{'quota': -5, 'used': 1e300, 'jobs': [{'files': 9}, 'x', {'job_id': 'a', 'files': '7', 'pictures': "
        "3}]}",
        "1.0 PiB of 0 B, a 0 B"_s},
    {"largest files first",
        "{'quota': 2048, 'used': 1023, 'jobs': [{'job_id': 'a', 'files': 1, 'pictures': 9000},"
        "{'job_id': 'b', 'files': 5120}, {'job_id': 'gone', 'files': 8000, 'job_status': 5},"
        "{'job_id': 'empty'}, {'job_id': 'c', 'files': 1}]}",
        "1023 B of 2.0 KiB, b 5.0 KiB, a 1 B, c 1 B"_s},
};

StandInServer::Reply SpaceWith(const QByteArray& jobs)
{
    return StandInServer::Data(
        "{'quota': 40960, 'used': 38912, 'unneeded': 1024, 'uploads': 0, 'pictures': 9, 'moreJobs': true, "
        "'jobs': ["
        + jobs + "]}");
}

QByteArray SpaceRequest(int jobs)
{
    return "GET /api/v1/account/storage?jobs=" + QByteArray::number(jobs) + ' ';
}

QByteArray Job(const QByteArray& id, int status, int kibibytes)
{
    return "{'job_id': '" + id
        + "', 'job_increasement': '7', 'job_name': '<b>shot</b>', 'job_status': " + QByteArray::number(status)
        + ", 'files': " + QByteArray::number(kibibytes * 1024) + ", 'pictures': 2048}";
}

/// Records each question and answers it.
class AnsweringBox : public ServiceBase<VTMessagboxInterface>
{
public:
    QString ShowMessage(int kind, const QString& /*title*/, const QString& /*text*/, const QIcon& /*icon*/,
        const QString& detail, const QVariantHash& /*buttons*/, bool /*list*/) override
    {
        if (kind == Question)
            questions.append(detail);
        return answer;
    }

    QStringList questions;
    QString answer = "btnMessageBox_1"_s; // refuses
};

/// A client that is signed in to a stand-in for the farm and shows the space there.
struct Client
{
    Client()
    {
        communication.Initialize({});
        communication.SetServerUrl(server.Url());
        server.SetReplyTo(SpaceRequest(100), SpaceWith(Job("a", 4, 3) + ',' + Job("b", 1, 30)));
        server.SetReplyTo("DELETE /api/v1/account/storage", StandInServer::Data("{'freed': 1}"));
        server.SetReplyTo("POST /api/v1/jobs/delete", StandInServer::Data("{'notAllowedJobs': []}"));
        space.BeginSession("secret"_s);
        space.Open();
        const auto windows = QApplication::topLevelWidgets();
        for (const QWidget* window : windows) {
            if (window->findChild<QTableView*>("tbvJobs"_s))
                table = window->findChild<QTableView*>("tbvJobs"_s);
        }
    }

    template <typename Widget>
    Widget* Find(const char* name) const
    {
        return table->window()->findChild<Widget*>(QLatin1String(name));
    }

    QString Text(const char* label) const { return Find<QLabel>(label)->text(); }
    int Rows() const { return table->model()->rowCount(); }

    /// @return the place of the first request that begins so; -1 when there is none.
    int Asked(const char* request) const
    {
        const auto requests = server.Requests();
        const auto found = std::find_if(requests.cbegin(), requests.cend(),
            [request](const QByteArray& one) { return one.startsWith(request); });
        return found == requests.cend() ? -1 : int(found - requests.cbegin());
    }

    StandInServer server;
    MemorySettings settings;
    UiLoaderService loader {&settings};
    CommunicationService communication;
    AnsweringBox box;
    SpaceControl space {&communication, &box, &loader};
    QTableView* table = nullptr;
};

} // namespace

/// The dialog that shows what an account holds on the farm.
class SpaceTest : public QObject
{
    Q_OBJECT

private slots:
    void ReadsAnswers_data() { AddRows(answers); }
    void ReadsAnswers()
    {
        const auto& [name, data, expected] = Row(answers);
        const QByteArray json = "{\"data\": " + QByteArray(data).replace('\'', '"') + '}';
        const auto space = FarmSpace::Read(QJsonDocument::fromJson(json).object());
        QStringList parts {
            space ? "%1 of %2"_s.arg(SpaceText(space->used), SpaceText(space->quota)) : "none"_s};
        for (std::size_t i = 0; space && i < space->jobs.size(); ++i)
            parts.append(space->jobs[i].id + u' ' + SpaceText(space->jobs[i].files));
        QCOMPARE(parts.join(", "_s), expected);
    }

    void DeletesWhatTheUserAgreesTo()
    {
        Client client;
        QSignalSpy freed(&client.space, &SpaceControl::Freed);
        QSignalSpy toldWindow(&client.communication, &CommunicationService::DeleteJobResponse);
        EVENTUALLY_COMPARE(client.Rows(), 2);
        QCOMPARE(client.Text("lblUsed"), "38.0 KiB of 40.0 KiB used"_s);
        QVERIFY(client.Find<QProgressBar>("barUsed")->property("full").toBool());
        auto* remove = client.Find<QPushButton>("btnDelete");
        QVERIFY(!remove->isEnabled());
        QVERIFY(QTest::qWaitForWindowActive(client.table->window(), Patience)); // or its keys do nothing
        QTest::keyClick(client.table, Qt::Key_Space);
        QVERIFY(client.Text("lblChecked").contains("30.0 KiB"_s));
        remove->click();
        QCOMPARE(client.box.questions,
            QStringList(
                "Delete 1 job and free up to 30.0 KiB of your space on the farm?\n"
                "Their pictures there (2.0 KiB) are deleted, too.\nJobs that have not ended yet: 1."_s));
        QCOMPARE(client.Asked("POST"), -1);

        client.server.SetReplyTo(SpaceRequest(100), SpaceWith(Job("a", 4, 3)));
        client.box.answer = "btnMessageBox_2"_s;
        QTest::keyClick(client.table, Qt::Key_Delete);
        EVENTUALLY_COMPARE(freed.count(), 1);
        QCOMPARE(toldWindow.count(), 1);
        EVENTUALLY_COMPARE(client.Rows(), 1);
        const int deletion = client.Asked("POST /api/v1/jobs/delete");
        QVERIFY(deletion > 0 && client.Asked("DELETE /api/v1/account/storage") > deletion);
        QVERIFY(client.server.Requests().at(deletion).endsWith(R"({"ids":["b"]})"));
        QVERIFY(!remove->isEnabled());
        client.space.EndSession();
        QVERIFY(!client.table->isVisible() && client.Rows() == 0);
    }

    void ShowsMoreJobs()
    {
        Client client;
        EVENTUALLY_COMPARE(client.Rows(), 2);
        emit client.table->clicked(client.table->model()->index(0, SpaceModel::NameColumn));
        auto* more = client.Find<QPushButton>("btnMore");
        QByteArray jobs = Job("a", 4, 3) + ',' + Job("b", 1, 30);
        for (const int wanted : {200, 400, 800, 1000}) {
            QVERIFY(more->isVisible());
            jobs += ',' + Job(QByteArray::number(wanted), 4, 1);
            client.server.SetReplyTo(SpaceRequest(wanted), SpaceWith(jobs));
            const int rows = client.Rows();
            more->setFocus();
            more->click();
            EVENTUALLY_COMPARE(client.Rows(), rows + 1);
        }
        QVERIFY(!more->isVisible());
        QCOMPARE(client.table->window()->focusWidget(), client.table);
        QVERIFY(client.Text("lblDetails").endsWith("Only the 1000 largest jobs are listed."_s));
        QVERIFY(client.Text("lblChecked").contains("30.0 KiB"_s));
        client.space.EndSession();
        client.space.BeginSession("secret"_s);
        client.space.Open();
        EVENTUALLY_COMPARE(client.Rows(), 2);
    }

    void SaysWhatFails()
    {
        Client client;
        EVENTUALLY_COMPARE(client.Rows(), 2);
        client.server.SetReplyTo(
            "POST /api/v1/jobs/delete", StandInServer::Http(404, R"({"message": "there is no such job"})"));
        client.box.answer = "btnMessageBox_2"_s;
        emit client.table->clicked(client.table->model()->index(1, SpaceModel::NameColumn));
        client.Find<QPushButton>("btnDelete")->click();
        // Meanwhile jobs are deleted in the main window.
        emit client.communication.DeleteJobResponse(200, {});
        QSignalSpy toldWindow(&client.communication, &CommunicationService::DeleteJobResponse);
        EVENTUALLY_COMPARE(client.Text("lblTrouble"), "The farm has no such job."_s);
        QCOMPARE(toldWindow.count(), 0);
        QVERIFY(client.Find<QPushButton>("btnDelete")->isEnabled());
        QCOMPARE(client.Asked("DELETE"), -1);
        QSignalSpy freed(&client.space, &SpaceControl::Freed);
        client.Find<QPushButton>("btnFree")->click();
        EVENTUALLY_COMPARE(freed.count(), 1);
        QVERIFY(client.box.questions.constLast().startsWith("Remove 1.0 KiB"_s));
        QCOMPARE(client.Rows(), 2);
    }
};

QTEST_MAIN(SpaceTest)
#include "tst_host_space.moc"
