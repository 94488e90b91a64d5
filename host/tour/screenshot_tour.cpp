#include "host/tour/screenshot_tour.h"

#include "common/vtr_codetables.h"
#include "common/vtr_columns.h"
#include "common/vtr_tablerows.h"
#include "host/app/client_host.h"
#include "host/app/session_control.h"
#include "host/mainform/main_form.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>
#include <QTabWidget>

#include <cstdio>

namespace {

constexpr int Tick = 100;          // ms
constexpr int SettlingTicks = 4;   // for layouts and pictures that follow a step with a delay
constexpr int RefreshTicks = 20;   // between two refreshes of the job list
constexpr int LongestStep = 60000; // ms
constexpr int LastStage = 7;       // of a submission
constexpr int Complete = 100;      // percent

/// @return a text of the main window in the current language.
QString ClientText(const char* text)
{
    return QCoreApplication::translate("VTQsClientPrivate", text);
}

bool Always()
{
    return true;
}

/// @return the top-level form that has a child of this name; null while there is none.
QWidget* FindForm(const QString& childName)
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window->findChild<QWidget*>(childName))
            return window;
    }
    return nullptr;
}

QTabWidget* Tabs()
{
    QTableWidget* jobs = FindJobTable();
    return jobs ? jobs->window()->findChild<QTabWidget*>(QStringLiteral("tbwContainer")) : nullptr;
}

} // namespace

ScreenshotTour::ScreenshotTour(const QString& folder, ClientHost* host)
    : m_folder(folder)
    , m_services(&host->Services())
    , m_session(&host->Session())
{
    m_opener.setSingleShot(true);
    connect(&m_opener, &QTimer::timeout, this, [this] { m_open(); });
    connect(&m_ticker, &QTimer::timeout, this, &ScreenshotTour::Proceed);
    PlanSession();
    PlanTab(0, QStringLiteral("my-render"));
    PlanSubmission();
    PlanDownload();
    PlanTab(0, {});
    PlanFrames();
    PlanConnection();
    PlanSpace();
    PlanDialog(QStringLiteral("btnSearchJob"), QStringLiteral("search"));
    PlanParents();
    PlanDialog(QStringLiteral("btnOkSetParent"), QStringLiteral("set-parent"));
    PlanDialog(QStringLiteral("spbStartFrame_0"), QStringLiteral("set-argument"));
    PlanDialog(QStringLiteral("lneInput"), QStringLiteral("group-name"));
    PlanModal(QStringLiteral("configuration"), [this] { m_services->configuration.ShowConf(); });
    const auto ask = [this](int kind, const QString& text, const QVariantHash& buttons) {
        m_services->messageBox.ShowMessage(kind, ClientText("QuillStar Client"), {}, QIcon(), text, buttons,
            kind == MessageBoxService::Notice);
    };
    PlanModal(QStringLiteral("notice"), [ask] {
        ask(MessageBoxService::Notice, ClientText("Amount Overdue!"),
            {{QStringLiteral("btnMessageBox_1"), ClientText("Ok")}});
    });
    PlanModal(QStringLiteral("question"), [ask] {
        ask(MessageBoxService::Question, ClientText("Are you sure to quit?"),
            {{QStringLiteral("btnMessageBox_1"), ClientText("Cancel")},
                {QStringLiteral("btnMessageBox_2"), ClientText("Ok")}});
    });
    PlanMenu();
    PlanPreview();
    m_time.start();
    m_ticker.start(Tick);
}

void ScreenshotTour::PlanSession()
{
    m_steps.push_back({QStringLiteral("the sign-in window"),
        [this] { return m_session->SignInForm()->isVisible() && m_session->IsReady(); },
        [this] {
            Save(m_session->SignInForm(), QStringLiteral("sign-in"));
            m_session->SignInAutomatically();
        }});
    // The client opens on the tab that was open last.
    m_steps.push_back({QStringLiteral("the main window"), [] { return Tabs() && Tabs()->isVisible(); },
        [] { Tabs()->setCurrentIndex(0); }});
    m_steps.push_back({QStringLiteral("a list of jobs"),
        [] {
            const QTableWidget* jobs = FindJobTable();
            return jobs && jobs->isVisible() && jobs->rowCount() > 0;
        },
        [] {}});
    m_steps.push_back(
        {QStringLiteral("a running job that advances"), [this] { return HasJobAdvanced(); }, [] {}});
}

/// @param name of the picture; empty to change the tab only.
void ScreenshotTour::PlanTab(int index, const QString& name)
{
    m_steps.push_back({QStringLiteral("the tabs"), [] { return Tabs() != nullptr; },
        [index] { Tabs()->setCurrentIndex(index); }});
    if (!name.isEmpty())
        m_steps.push_back({name, Always, [this, name] { Save(FindJobTable()->window(), name); }});
}

void ScreenshotTour::PlanDialog(const QString& childName, const QString& name)
{
    m_steps.push_back({name, [childName] { return FindForm(childName) != nullptr; },
        [childName] { FindForm(childName)->show(); }});
    m_steps.push_back({name, [childName] { return FindForm(childName) != nullptr; },
        [this, childName, name] {
            QWidget* form = FindForm(childName);
            Save(form, name);
            form->close();
        }});
}

/// Submits one of the embedded farm's scenes and waits until it has become a job.
void ScreenshotTour::PlanSubmission()
{
    m_steps.push_back({QStringLiteral("the session"), Always, [this] {
                           m_services->renderCore.SubmitScene(QCoreApplication::applicationDirPath()
                               + QLatin1String("/farm/scenes/lighthouse.pov"));
                       }});
    const auto isSubmitted = [this] {
        VTRenderCoreInterface& core = m_services->renderCore;
        const QString id = core.GetSubmitTaskIds().value(0);
        return core.GetTaskStage(id) == LastStage && core.GetTaskProgress(id) == Complete;
    };
    m_steps.push_back({QStringLiteral("a submitted scene"), isSubmitted, [] {}});
    m_steps.push_back({QStringLiteral("the list of tasks"),
        [] {
            const QTableWidget* tasks = FindTable(QStringLiteral("twtLocalTask"));
            const auto* bar
                = tasks ? qobject_cast<QProgressBar*>(tasks->cellWidget(0, VTTaskColumn::Progress)) : nullptr;
            return bar && bar->value() == Complete;
        },
        [this] { Save(FindJobTable()->window(), QStringLiteral("local-tasks")); }});
}

/// Downloads the frames that the running job has finished so far.
void ScreenshotTour::PlanDownload()
{
    m_steps.push_back({QStringLiteral("the tabs"), [] { return Tabs() != nullptr; },
        [this] {
            m_services->renderCore.TriggerJobIdType(m_order);
            Tabs()->setCurrentIndex(2);
        }});
    m_steps.push_back({QStringLiteral("a finished download"),
        [] {
            const QTableWidget* downloads = FindDownloadTable();
            const auto* bar = downloads ? qobject_cast<QProgressBar*>(downloads->cellWidget(0, 3)) : nullptr;
            return bar && bar->value() == Complete;
        },
        [this] { Save(FindJobTable()->window(), QStringLiteral("downloads")); }});
}

/// Requests the candidates, as the dialog does when it is opened for checked jobs.
void ScreenshotTour::PlanParents()
{
    m_steps.push_back({QStringLiteral("the window"), [] { return FindMainWindow() != nullptr; },
        [] {
            QMetaObject::invokeMethod(
                FindMainWindow(), "GetJobList", Q_ARG(int, 1), Q_ARG(QString, QString()), Q_ARG(int, 1));
        }});
    m_steps.push_back({QStringLiteral("a list of possible parents"),
        [] {
            const QWidget* form = FindForm(QStringLiteral("twtJobList"));
            return form && form->findChild<QTableWidget*>(QStringLiteral("twtJobList"))->rowCount() > 0;
        },
        [] {}});
}

/// Opens the frames of the running job as a double click on its row does.
void ScreenshotTour::PlanFrames()
{
    const auto frames = [] {
        const QWidget* form = FindForm(QStringLiteral("tbvFrames"));
        return form ? form->findChild<QTableView*>(QStringLiteral("tbvFrames")) : nullptr;
    };
    m_steps.push_back({QStringLiteral("the running job"), Always, [this] {
                           QTableWidget* jobs = FindJobTable();
                           for (int row = 0; row < jobs->rowCount(); ++row) {
                               if (m_order.contains(VTTableRows::Id(jobs, row)))
                                   emit jobs->cellDoubleClicked(row, VTJobColumn::Name);
                           }
                       }});
    m_steps.push_back({QStringLiteral("the frames of a job"),
        [frames] { return frames() && frames()->isVisible() && frames()->model()->rowCount() > 0; },
        [frames] {
            // The demo's own frames have neither pictures nor logs.
            const auto* picture
                = frames()->window()->findChild<QPushButton*>(QStringLiteral("btnOpenPicture"));
            for (int row = 0; row < frames()->model()->rowCount() && !picture->isEnabled(); ++row)
                frames()->selectRow(row);
        }});
    m_steps.push_back({QStringLiteral("the log of a frame"),
        [frames] {
            const auto* log = frames()->window()->findChild<QPlainTextEdit*>(QStringLiteral("pteLog"));
            return !log->toPlainText().isEmpty();
        },
        [this, frames] {
            Save(frames()->window(), QStringLiteral("frames"));
            frames()->window()->close();
        }});
}

/// Opens the list of failures as a click on the strip in the title bar does.
void ScreenshotTour::PlanConnection()
{
    const auto strip = [] {
        const auto* place = FindJobTable()->window()->findChild<QWidget*>(QStringLiteral("wgtConnection"));
        return place ? place->findChild<QPushButton*>() : nullptr;
    };
    m_steps.push_back({QStringLiteral("the connection"), [strip] { return strip() != nullptr; },
        [this, strip] {
            strip()->click();
            QWidget* form = FindForm(QStringLiteral("btnTryAgain"));
            Save(form, QStringLiteral("connection"));
            form->close();
        }});
}

/// Opens the space that the account takes on the farm as a click on the account's button does.
void ScreenshotTour::PlanSpace()
{
    const auto jobs = [] {
        const QWidget* form = FindForm(QStringLiteral("tbvJobs"));
        return form ? form->findChild<QTableView*>(QStringLiteral("tbvJobs")) : nullptr;
    };
    m_steps.push_back({QStringLiteral("the account"), [] { return FindMainForm() != nullptr; },
        [] { FindMainForm()->findChild<QPushButton*>(QStringLiteral("btnSpace"))->click(); }});
    m_steps.push_back({QStringLiteral("the space on the farm"),
        [jobs] { return jobs() && jobs()->isVisible() && jobs()->model()->rowCount() > 0; },
        [this, jobs] {
            Save(jobs()->window(), QStringLiteral("space"));
            jobs()->window()->close();
        }});
}

/// @param open shows a modal window and returns when it is closed.
void ScreenshotTour::PlanModal(const QString& name, const std::function<void()>& open)
{
    m_steps.push_back({name, Always, [this, open] {
                           m_open = open;
                           m_opener.start(0);
                       }});
    m_steps.push_back({name, [] { return QApplication::activeModalWidget() != nullptr; },
        [this, name] {
            QWidget* window = QApplication::activeModalWidget();
            Save(window, name);
            window->close();
        }});
}

void ScreenshotTour::PlanMenu()
{
    const auto menu = [this] { return m_services->loader.GetMenu(QStringLiteral("menuTray"), {}); };
    m_steps.push_back({QStringLiteral("the tray menu"), [menu] { return menu() != nullptr; },
        [menu] { menu()->popup(QPoint(0, 0)); }});
    m_steps.push_back({QStringLiteral("the tray menu"), [menu] { return menu() && menu()->isVisible(); },
        [this, menu] {
            Save(menu(), QStringLiteral("tray-menu"));
            menu()->close();
        }});
}

/// Opens the preview of the downloaded frame.
void ScreenshotTour::PlanPreview()
{
    const QString picture = QStringLiteral("scaPicture");
    m_steps.push_back(
        {QStringLiteral("a picture"), Always, [] { emit FindDownloadTable()->cellDoubleClicked(0, 0); }});
    m_steps.push_back({QStringLiteral("the preview"),
        [picture] {
            const QWidget* form = FindForm(picture);
            return form && !form->findChild<QLabel*>(QStringLiteral("lblSize"))->text().isEmpty();
        },
        [this, picture] {
            Save(FindForm(picture), QStringLiteral("preview"));
            FindForm(picture)->close();
        }});
}

void ScreenshotTour::Proceed()
{
    if (m_steps.empty()) {
        End({});
        return;
    }
    if (m_time.hasExpired(LongestStep)) {
        End(m_steps.front().awaited + QStringLiteral(" did not show in time"));
        return;
    }
    if (++m_idleTicks < SettlingTicks || !m_steps.front().isThere())
        return;
    m_idleTicks = 0;
    const Step step = m_steps.front();
    m_steps.pop_front();
    m_time.start();
    step.act();
}

void ScreenshotTour::Save(QWidget* widget, const QString& name)
{
    const QString file = QDir(m_folder).filePath(name + QLatin1String(".png"));
    if (!QDir().mkpath(m_folder) || !widget->grab().save(file)) {
        End(QStringLiteral("cannot write ") + file);
        return;
    }
    std::printf("%s\n", qUtf8Printable(file));
    std::fflush(stdout);
}

bool ScreenshotTour::HasJobAdvanced()
{
    QTableWidget* jobs = FindJobTable();
    for (int row = 0; jobs && row < jobs->rowCount(); ++row) {
        const auto* bar = qobject_cast<QProgressBar*>(jobs->cellWidget(row, VTJobColumn::Progress));
        const QTableWidgetItem* state = jobs->item(row, VTJobColumn::Status);
        const QTableWidgetItem* job = jobs->item(row, VTJobColumn::Sequence);
        if (!bar || !state || !job || state->data(Qt::UserRole).toInt() != VTCodeTables::JobRunning)
            continue;
        const QString id = job->data(Qt::UserRole).toString();
        if (!m_firstProgress.contains(id))
            m_firstProgress.insert(id, bar->value());
        if (bar->value() > m_firstProgress.value(id)) {
            const QString folder
                = job->text() + QLatin1Char('_') + jobs->item(row, VTJobColumn::Name)->text();
            m_order = {{id, QVariantMap {{QStringLiteral("subDir"), folder}, {QStringLiteral("manual"), 1}}}};
            return true;
        }
    }
    if (QWidget* window = FindMainWindow(); window && m_idleTicks % RefreshTicks == 0)
        QMetaObject::invokeMethod(window, "RefreshJobList");
    return false;
}

void ScreenshotTour::End(const QString& failure)
{
    m_ticker.stop();
    m_steps.clear();
    if (!failure.isEmpty())
        std::fprintf(stderr, "quillstar: %s\n", qUtf8Printable(failure));
    QCoreApplication::exit(failure.isEmpty() ? 0 : 1);
}
