#include "bench/calling_stand_ins.h"
#include "tests/standins/client.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QSpinBox>

#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

constexpr int DeepestCall = 4;
constexpr int StepsBetweenTidying = 200;

/// A seeded random stream of what users, services and the host do to the window, at any moment and from inside any call.
class Soak : public QObject
{
public:
    explicit Soak(unsigned seed)
        : m_random(seed)
    {
        m_client.leftOut = QStringList {"VTRenderCoreInterface"_s, "VTSettingsInterface"_s};
        m_settings.values = m_client.settings.values;
        for (const char* name : {"autodownload", "popupfinish", "soundfinish", "setargument"})
            m_settings.values.insert(QStringLiteral("vtr.account.user-0/%1").arg(QLatin1String(name)), true);
        interrupt = [this] {
            if (m_running && Chance(2))
                Step();
        };
        qApp->installEventFilter(this);
        m_client.Start();
        m_client.Context()->registerService({"VTRenderCoreInterface"_s}, &m_renderCore);
        m_client.Context()->registerService({"VTSettingsInterface"_s}, &m_settings);
        Drive();
    }
    ~Soak() override
    {
        m_running = false;
        qApp->removeEventFilter(this);
    }

    void Run(int events)
    {
        while (m_events < events) {
            Step();
            if (m_events % StepsBetweenTidying == 0)
                Tidy();
        }
        m_running = false;
    }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        const bool isWindowEvent = event->type() == QEvent::Close || event->type() == QEvent::Show
            || event->type() == QEvent::Hide || event->type() == QEvent::Resize;
        const auto* widget = qobject_cast<QWidget*>(object);
        // Qt never ends when a window is shown from inside the close event of a popup.
        const bool isForm = widget && widget->isWindow() && widget->windowType() != Qt::Popup;
        if (isWindowEvent && isForm && m_running && Chance(5))
            Step();
        return false;
    }

private:
    int Below(int limit) { return int(m_random() % unsigned(limit)); }
    bool Chance(int percent) { return Below(100) < percent; }

    /// Takes steps in the event loops of dialogs, menus and questions, and closes them. Each turn has a timer of its own,
    /// because a timer does not fire in an event loop that runs in its own slot.
    void Drive()
    {
        if (!m_running)
            return;
        QTimer::singleShot(0, this, &Soak::Drive);
        if (m_depth > 0 && Chance(50))
            CloseTop();
        else
            Step();
    }

    void Step()
    {
        if (m_depth >= DeepestCall)
            return;
        ++m_depth;
        ++m_events;
        if (Chance(20))
            m_client.communication.onRequest = interrupt;
        m_client.messageBox.answer = Chance(70) ? MessageBoxStandIn::Consent() : MessageBoxStandIn::Refusal();
        m_client.messageBox.whileOpen = [this] {
            if (Chance(60))
                Step();
        };
        const std::function<void()> kinds[] = {[this] { Answer(); }, [this] { Answer(); },
            [this] { Click(); }, [this] { Click(); }, [this] { UseTable(); }, [this] { UseTable(); },
            [this] { ChangeLists(); }, [this] { CallSlot(); }, [this] { CallSlot(); }, [this] { EditForm(); },
            [this] { Chance(80) ? Answer() : DriveService(); }};
        kinds[std::size_t(Below(int(std::size(kinds))))]();
        --m_depth;
    }

    /// Lets the event loop catch up, revives the client, and forgets the stand-ins' records, which would grow for ever.
    void Tidy()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (m_client.Service()) {
            QVariant state;
            m_client.Service()->Initialize({{"plugin_context"_s, QVariant::fromValue(m_client.Context())}});
            m_client.Service()->Show(state, {});
        }
        journal.clear();
        m_client.logger.lines.clear();
        m_client.communication.requests.clear();
        m_client.messageBox.messages.clear();
        m_renderCore.orders.clear();
        m_renderCore.seenEvents.clear();
        for (QStringList* calls :
            {&m_settings.calls, &m_client.messageBox.calls, &m_client.communication.calls,
                &m_renderCore.calls, &m_client.uiLoader.calls, &m_client.logger.calls,
                &m_client.configuration.calls, &m_client.previewer.calls, &m_client.uiLoader.loadedKeys})
            calls->clear();
    }

    void CloseTop()
    {
        if (QWidget* popup = QApplication::activePopupWidget())
            popup->close();
        else if (QWidget* modal = QApplication::activeModalWidget())
            modal->close();
    }

    QVariant Value()
    {
        const QVariant values[] = {QVariant(), 0, 1, 4, -7, 150, 1e300, "text"_s, "<b>x</b>"_s,
            QVariantList {1, "a"_s}, QVariantMap {{"list"_s, 5}}, true};
        return values[Below(int(std::size(values)))];
    }

    QVariantList RandomJobs()
    {
        QVariantList jobs;
        const int count = Chance(20) ? 0 : Below(20);
        for (int i = 0; i < count; ++i) {
            QVariantMap job = MakeJob(Below(40), Below(11) - 1, Below(160) - 10);
            if (Chance(5))
                job.insert(job.keys().at(Below(job.size())), Value());
            jobs.append(Chance(2) ? Value() : QVariant(job));
        }
        return jobs;
    }

    void Answer()
    {
        CommunicationStandIn& farm = m_client.communication;
        const int result = Chance(80) ? 200 : 500;
        const QVariantMap refusal {
            {"data"_s, QVariantMap {{"notAllowedJobs"_s, Chance(30) ? Value() : QVariant()}}}};
        const QVariantMap info {{"jobId"_s, "id-%1"_s.arg(Below(40))}, {"identifier"_s, 1},
            {"data"_s, QVariantMap {{"jobDatas"_s, QVariantMap {{"jobStatus"_s, Below(6)}}}}}};
        switch (Below(16)) {
        case 0:
            return farm.DeliverSignIn("user-%1"_s.arg(Below(2)), result);
        case 1:
            return emit farm.SignOutResponse(result, {});
        case 2:
            return farm.DeliverUserInfo({{"user_balance"_s, Value()}, {"username"_s, Value()}}, Chance(50));
        case 3:
            return emit farm.JobListResponse(result, {{"data"_s, Value()}, {"identifier"_s, Value()}});
        case 4:
            return farm.DeliverJobs(RandomJobs(), 40, 1);
        case 5:
            return emit farm.DeleteJobResponse(result, refusal);
        case 6:
            return emit farm.StopJobResponse(result, refusal);
        case 7:
            return emit farm.RecoverJobResponse(result, refusal);
        case 8:
            return emit farm.RestartJobResponse(result, refusal);
        case 9:
            return emit farm.FullRenderResponse(result, refusal);
        case 10:
            return emit farm.JobInfoResponse(result, info);
        case 11:
            return emit farm.ProjectListResponse(result, {{"data"_s, Value()}});
        default:
            return farm.DeliverJobs(RandomJobs(), Below(300));
        }
    }

    template <class Widget>
    Widget* Any(const QList<Widget*>& widgets)
    {
        return widgets.isEmpty() ? nullptr : widgets.at(Below(widgets.size()));
    }
    QWidget* AnyForm()
    {
        const QString keys[] = {"qsclient"_s, "qsclient"_s, "qsclient"_s, "search"_s, "setargument"_s,
            "setparent"_s, "inputdialog"_s};
        return m_client.uiLoader.Form("com.vtr."_s + keys[Below(int(std::size(keys)))]);
    }

    void Click()
    {
        QWidget* form = AnyForm();
        if (!form)
            return;
        if (Chance(75)) {
            if (auto* button = Any(form->findChildren<QAbstractButton*>()))
                button->click();
        } else if (Chance(50)) {
            auto* list = Any(form->findChildren<QListWidget*>());
            if (list && list->count() > 0)
                emit list->itemClicked(list->item(Below(list->count())));
        } else if (QWidget* window = m_client.Window()) {
            QAction* entry = Any(window->findChildren<QAction*>());
            // Another program would reveal the file, and quitting ends the soak.
            if (entry && entry->text() != "Open file path"_s && entry->text() != "Quit"_s)
                entry->trigger();
        }
    }

    void UseTable()
    {
        QWidget* form = Chance(90) ? m_client.Form() : AnyForm();
        auto* table = form ? Any(form->findChildren<QTableWidget*>()) : nullptr;
        if (!table)
            return;
        const int row = Below(20);
        switch (Below(6)) {
        case 0:
            return emit table->cellPressed(row, 0);
        case 1:
            return emit table->customContextMenuRequested(QPoint());
        case 2:
            return emit table->cellDoubleClicked(row, Below(6));
        case 3:
            return table->setCurrentCell(row, Below(6));
        case 4:
            return QTest::keyClick(table, Chance(50) ? Qt::Key_Home : Qt::Key_End, Qt::ControlModifier);
        default:
            if (QTableWidgetItem* item = table->item(row, 0))
                item->setCheckState(Chance(50) ? Qt::Checked : Qt::Unchecked);
        }
    }

    void ChangeLists()
    {
        auto& tasks = m_renderCore.tasks;
        for (int i = Below(4); i > 0; --i) {
            if (Chance(50) && tasks.size() < 60)
                tasks.insert(
                    Below(tasks.size() + 1), {Numbered("t"_s, m_events % 1000), "/scenes/shot.ma"_s});
            else if (!tasks.isEmpty())
                tasks.removeAt(Below(tasks.size()));
            if (Chance(50) && m_renderCore.downloads.size() < 60)
                m_renderCore.downloads.insert(
                    Numbered("d"_s, Below(100)), QVariantMap {{"status"_s, Value()}});
            else if (!m_renderCore.downloads.isEmpty())
                m_renderCore.downloads.erase(m_renderCore.downloads.begin());
        }
        if (!tasks.isEmpty()) {
            auto& task = tasks[Below(tasks.size())];
            task.stage = Below(9);
            task.error = Chance(70) ? 0 : Below(10);
            task.progress = Below(150) - 20;
            task.arguments = {QVariantMap {{"startFrame_0"_s, Value()}}};
        }
        const QString id = tasks.isEmpty() ? "none"_s : tasks.first().id;
        switch (Below(5)) {
        case 0:
            return emit m_renderCore.failFile(id, {"a"_s});
        case 1:
            return emit m_renderCore.lackedTexture(id, {"b"_s});
        case 2:
            return emit m_renderCore.DownloadFinish("<i>f</i>"_s);
        case 3:
            return emit m_renderCore.DownloadListChanged();
        default:
            return emit m_renderCore.SubmitListChanged();
        }
    }

    void CallSlot()
    {
        static const char* const names[] = {"RefreshJobList", "GetUserInfo", "ShowSubmitList",
            "ShowDownloadTasks", "UploadRetryOption", "LackTextureOption", "AdjustPageButtons", "SignOut",
            "UpdateSettings", "ShowWindowMaximized", "ShowWindowNormal", "TriggerChangeLanguage",
            "Redownload", "LoadGlobalSettings", "ShowSubmitList", "ShowDownloadTasks"};
        if (!m_client.Window())
            return;
        if (Chance(80))
            m_client.Call(names[Below(int(std::size(names)))]);
        else if (Chance(50))
            emit m_client.uiLoader.SkinChanged(Chance(50) ? "teal"_s : "plum"_s);
        else if (QTabWidget* tabs = m_client.Form() ? m_client.Tabs() : nullptr)
            tabs->setCurrentIndex(Below(3));
    }

    void EditForm()
    {
        QWidget* form = AnyForm();
        if (!form)
            return;
        if (auto* edit = Any(form->findChildren<QLineEdit*>()))
            edit->setText(Value().toString());
        if (auto* box = Any(form->findChildren<QSpinBox*>()))
            box->setValue(Below(2000));
    }

    void DriveService()
    {
        VTBaseInterface* service = m_client.Service();
        if (!service) {
            if (m_depth == 1)
                m_client.Start();
            return;
        }
        QVariant state;
        const QVariantMap parameters {{"plugin_context"_s, QVariant::fromValue(m_client.Context())}};
        switch (Below(8)) {
        case 0:
            service->Hide(Below(3));
            break;
        case 1:
            service->Uninitialize();
            break;
        case 2:
            service->Activate(1, {});
            break;
        case 3:
            service->Close(1);
            break;
        case 4:
            if (m_depth == 1)
                m_client.Stop();
            break;
        default:
            service->Initialize(parameters);
            service = m_client.Service();
            if (service)
                service->Show(state, {});
        }
    }

    std::mt19937 m_random;
    CallingRenderCore m_renderCore;
    CallingSettings m_settings;
    Client m_client;
    int m_depth = 0;
    int m_events = 0;
    bool m_running = true;
};

} // namespace

/// soak_window [events] [seed]: prints the seed, so that a run that failed can be repeated.
int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const int events = argc > 1 ? std::atoi(argv[1]) : 1000;
    const unsigned seed = argc > 2 ? unsigned(std::atoi(argv[2])) : 1;
    std::printf("%d events, seed %u\n", events, seed);
    std::fflush(stdout);
    Soak soak(seed);
    soak.Run(events);
    return 0;
}
