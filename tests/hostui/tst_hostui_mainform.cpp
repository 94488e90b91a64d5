#include "host/mainform/cell_tips.h"
#include "host/mainform/filter_bar.h"
#include "host/mainform/filter_menu.h"
#include "host/mainform/filter_text.h"
#include "host/mainform/form_closing.h"
#include "host/mainform/list_hints.h"
#include "host/mainform/preview_trigger.h"
#include "host/mainform/task_status.h"
#include "host/mainform/transfer_buttons.h"
#include "host/settings/setting_keys.h"
#include "tests/hostui/memory_settings.h"
#include "tests/hostui/small_form.h"
#include "tests/standins/stand_ins.h"
#include "tests/support/waiting.h"

#include <QtWidgets>

/// The plugin's window, as the host knows it.
class VTQsClientPrivate : public QWidget
{
    Q_OBJECT

public slots:
    void SearchJob(QVariantMap& conditions) { searches.append(conditions); }

public:
    QVariantList searches;
};

/// The owner of the entries of the group panel's menu.
class VTGroup : public QObject
{
    Q_OBJECT
};

namespace {

/// Conditions, and how they are named.
const std::tuple<const char*, QString, QString> filters[] = {
    {"none", {}, {}},
    {"status of the panel", R"({"status":1})"_s, "Job Status: Running"_s},
    {"two fields", R"({"job_name":"<b>","status":"1"})"_s, "Job Name: <b>, Job Status: Running"_s},
    {"type", R"({"job_type":"vtr@povray@POV-Ray"})"_s, "Job Type: POV-Ray"_s},
    {"group", R"({"job_guid":"a,b"})"_s, "Group: hero"_s},
    {"times", R"({"end_min_time":"a","end_max_time":"b"})"_s, "End Time: a – b"_s},
    {"project that is gone", R"({"pool_id":"p7"})"_s, "Project Name: p7"_s},
    {"unreadable", "["_s, "Search"_s},
};

/// The tool tip of a cell and the width of its column, and whether the host shows one; the cell's text is "<b>water".
const std::tuple<const char*, QString, int, bool> tips[] = {
    {"wide", {}, 300, false},
    {"narrow", {}, 30, true},
    {"narrow, own tip", "own"_s, 30, false},
};

/// The parts of the search form that name conditions.
struct SearchForm : QWidget
{
    SearchForm()
    {
        Add<QPushButton>("btnSearchJob", "Search");
        Add<QLabel>("lblJobName", "Job Name");
        Add<QLabel>("lblJobType", "Job Type");
        Add<QLabel>("lblJobStatus", "Job Status");
        Add<QLabel>("lblProjectName", "Project Name");
        Add<QCheckBox>("checkBox_endTimeRange", "End Time");
        AddChoice("cmbJobStatus", "Running", 1);
        AddChoice("cmbJobType", "POV-Ray", QStringList {"vtr"_s, "povray"_s, "POV-Ray"_s});
    }

    template <class Widget>
    void Add(const char* name, const char* text)
    {
        (new Widget(QLatin1String(text), this))->setObjectName(QLatin1String(name));
    }
    void AddChoice(const char* name, const char* text, const QVariant& value)
    {
        auto* box = new QComboBox(this);
        box->setObjectName(QLatin1String(name));
        box->addItem({});
        box->addItem(QLatin1String(text), value);
    }
};

/// A main form with the bar that names the filter.
struct FilterForm : MainForm
{
    FilterForm()
    {
        bar.setObjectName("wgtFilter"_s);
        label.setObjectName("lblFilter"_s);
        label.resize(300, 20);
        found.setObjectName("lblFound"_s);
        showAll.setObjectName("btnShowAll"_s);
        group.setObjectName("lblProjectV"_s);
        show();
    }

    QWidget bar {this};
    QLabel label {&bar};
    QLabel found {&bar};
    QPushButton showAll {&bar};
    QLabel group {"hero"_s, this};
};

/// A main form with a group panel.
struct PanelForm : MainForm
{
    PanelForm()
    {
        button.setObjectName("btnGroups"_s);
        panel.addItem(statuses, "My Render"_s);
        panel.addItem(groups, "Group"_s);
        statuses->addItem("Running"_s);
        groups->addItem("Bay & Co"_s);
        menu.addActions({add, remove});
    }

    QToolBox panel {this};
    QListWidget* statuses = new QListWidget;
    QListWidget* groups = new QListWidget;
    QPushButton button {this};
    QMenu menu {this};
    VTGroup owner;
    QAction* add = new QAction(&owner);
    QAction* remove = new QAction(&owner);
};

class FormClosingWithTray : public FormClosing
{
public:
    using FormClosing::FormClosing;

protected:
    bool HasTray() const override { return true; }
};

QVariantMap Listed(const QString& conditions, int total, int identifier = 0)
{
    return {{"identifier"_s, identifier}, {"conditions"_s, conditions},
        {"data"_s, QVariantMap {{"total"_s, total}}}};
}

} // namespace

/// The host's additions to the main form.
class TestMainForm : public QObject
{
    Q_OBJECT

private slots:
    void NamesTheFilter_data() { AddRows(filters); }
    void NamesTheFilter()
    {
        const SearchForm form;
        const auto& [name, conditions, text] = Row(filters);
        QCOMPARE(FilterText(&form, conditions, "hero"_s), text);
    }

    void ShowsAllJobsAgain()
    {
        const SearchForm search;
        VTQsClientPrivate window;
        FilterForm form;
        FilterBar filter;
        filter.BeginSession();
        filter.BeginSession();
        filter.HandleJobList(200, Listed(R"({"job_guid":"a"})"_s, 12));
        QVERIFY(form.bar.isVisible());
        QCOMPARE(form.found.text(), "Found: 12"_s);
        form.group.setText("other"_s); // deleting a group chooses another one, but filters nothing
        filter.HandleJobList(200, Listed(R"({"job_guid":"a"})"_s, 12));
        filter.HandleJobList(500, Listed({}, 3));
        filter.HandleJobList(200, Listed({}, 3, 1));
        QCOMPARE(form.label.text(), "Group: hero"_s);
        QCOMPARE(form.found.text(), "Found: 12"_s);
        form.showAll.click();
        QCOMPARE(window.searches, QVariantList {QVariantMap()});
        filter.HandleJobList(200, Listed({}, 62));
        QVERIFY(!form.bar.isVisible());
    }

    void OffersThePanelByKeyboard()
    {
        PanelForm form;
        FilterMenu filter;
        filter.BeginSession();
        QMenu* menu = form.button.menu();
        const auto choose = [menu](const QString& text) {
            emit menu->aboutToShow();
            const auto entries = menu->actions();
            for (QAction* entry : entries) {
                if (entry->text() == text)
                    entry->trigger();
            }
            return menu->actions().size();
        };
        int chosen = 0;
        connect(form.groups, &QListWidget::itemClicked, this, [&chosen] { ++chosen; });
        QSignalSpy added(form.add, &QAction::triggered);
        QSignalSpy removed(form.remove, &QAction::triggered);
        QCOMPARE(choose("Bay && Co"_s), 5);
        QCOMPARE(chosen, 1);
        QCOMPARE(form.panel.currentIndex(), 1);
        choose("Add a group…"_s);
        QCOMPARE(choose("Delete the group Bay && Co"_s), 6);
        QCOMPARE(added.count() * 10 + removed.count(), 11);
        delete form.groups->takeItem(0);
        QCOMPARE(choose({}), 4);
    }

    void SaysWhyAListIsEmpty()
    {
        MainForm form;
        form.show();
        ListHints hints;
        hints.BeginSession();
        hints.BeginSession();
        auto* table = form.findChild<QTableWidget*>("twtMyRender"_s);
        QCOMPARE(table->findChildren<QWidget*>("wgtHint"_s).size(), 1);
        const auto* hint = table->findChild<QWidget*>("wgtHint"_s);
        const auto* heading = hint->findChild<QLabel*>("lblHintHeading"_s);
        hints.HandleJobsListed(false);
        QCoreApplication::processEvents();
        QVERIFY(!hint->isVisible());
        table->setRowCount(0);
        EVENTUALLY(hint->isVisible());
        QCOMPARE(heading->text(), "No jobs yet"_s);
        QCOMPARE(hint->geometry(), table->viewport()->geometry());
        hints.HandleJobsListed(true);
        QCOMPARE(heading->text(), "No jobs match"_s);
        QSignalSpy requests(&hints, &ListHints::AllJobsRequested);
        auto* button = hint->findChild<QPushButton*>();
        button->click();
        QCOMPARE(requests.count(), 1);
        button->setFocus();
        table->setRowCount(1);
        EVENTUALLY(!hint->isVisible());
        QCOMPARE(form.focusWidget(), table);
        table->setRowCount(0);
        EVENTUALLY(hint->isVisible());
        hints.BeginSession(); // the jobs of the next account are not known yet
        EVENTUALLY(!hint->isVisible());
    }

    void CommandsCheckedDownloads()
    {
        MainForm form;
        QPushButton stop(&form);
        QPushButton retry(&form);
        stop.setObjectName("btnPause"_s);
        retry.setObjectName("btnRetryFailed"_s);
        form.show();
        auto* table = form.findChild<QTableWidget*>("twtDownload"_s);
        for (int row = 0; row < 3; ++row) {
            auto* item = new QTableWidgetItem;
            item->setData(Qt::UserRole, row);
            item->setCheckState(row == 1 ? Qt::Unchecked : Qt::Checked);
            table->setItem(row, 0, item);
        }
        RenderCoreStandIn renderCore;
        MemorySettings settings;
        TransferButtons buttons(&renderCore, &settings);
        buttons.BeginSession("ann"_s);
        buttons.BeginSession("bob"_s);
        QSignalSpy notices(&buttons, &TransferButtons::Notice);
        QSignalSpy retries(&buttons, &TransferButtons::RetryFailedRequested);
        journal.clear();
        stop.click(); // on the tab of jobs it is the window's
        QCOMPARE(journal, QStringList());
        form.tabs.setCurrentIndex(2);
        stop.click();
        QCOMPARE(journal, QStringList {"StopDownloadTasks 0,2"_s});
        table->setRowCount(0);
        QCOMPARE(notices.count(), 0);
        stop.click();
        retry.click();
        QCOMPARE(notices.count(), 1);
        QCOMPARE(retries.count(), 1);
        QCOMPARE(journal.size(), 1);
    }

    void PaintsWhyATaskStandsStill()
    {
        MainForm form;
        form.tabs.setCurrentIndex(1);
        form.show();
        auto* table = form.findChild<QTableWidget*>("twtLocalTask"_s);
        for (const int column : {0, 2})
            table->setItem(0, column, new QTableWidgetItem("a"_s));
        table->item(0, 0)->setData(Qt::UserRole, "a.1"_s);
        const int width = table->sizeHintForIndex(table->model()->index(0, 2)).width();
        TaskStatus status([](const QString& id) { return QString(id + " is missing a texture"_s); });
        status.BeginSession();
        QVERIFY(table->sizeHintForIndex(table->model()->index(0, 2)).width() > width + 50);
        QCOMPARE(table->item(0, 2)->text(), "a"_s);

        table->setColumnWidth(2, 40);
        CellTips cellTips;
        cellTips.BeginSession();
        const QPoint place = table->visualItemRect(table->item(0, 2)).center();
        QHelpEvent help(QEvent::ToolTip, place, table->viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(table->viewport(), &help);
        QCOMPARE(QToolTip::text(), "a.1 is missing a texture"_s);
    }

    void LeavesNoCheckMarkBehind()
    {
        MainForm form;
        auto* table = form.findChild<QTableWidget*>("twtDownload"_s);
        for (const int column : {0, 2, 4})
            table->setItem(1, column, new QTableWidgetItem("f.png"_s));
        PreviewTrigger trigger;
        trigger.Attach();
        QSignalSpy previews(&trigger, &PreviewTrigger::PreviewRequested);
        for (const int status : {1, 2}) {
            table->item(1, 0)->setCheckState(Qt::Checked); // by the first press
            table->item(1, 4)->setData(Qt::UserRole, status);
            emit table->cellDoubleClicked(1, 3);
            QCOMPARE(previews.count(), status - 1);
            QCOMPARE(table->item(1, 0)->checkState(), status == 2 ? Qt::Unchecked : Qt::Checked);
        }
    }

    void ShowsTextsThatAreCutOff_data() { AddRows(tips); }
    void ShowsTextsThatAreCutOff()
    {
        const auto& [name, own, width, shown] = Row(tips);
        MainForm form;
        form.show();
        auto* table = form.findChild<QTableWidget*>("twtMyRender"_s);
        auto* item = new QTableWidgetItem("<b>water"_s);
        item->setToolTip(own);
        table->setItem(0, 0, item);
        table->setHorizontalHeaderLabels({"<b>water"_s});
        table->setColumnWidth(0, width);
        CellTips cellTips;
        cellTips.BeginSession();
        for (QWidget* view : {table->viewport(), table->horizontalHeader()->viewport()}) {
            QToolTip::hideText();
            QHelpEvent help(QEvent::ToolTip, {5, 5}, view->mapToGlobal({5, 5}));
            const bool isHandled = cellTips.eventFilter(view, &help);
            const bool isHeader = view != table->viewport();
            QCOMPARE(isHandled, isHeader ? width == 30 : shown);
            if (isHandled && !isHeader)
                QVERIFY2(QToolTip::text().contains("&lt;b&gt;water"_s), qPrintable(QToolTip::text()));
        }
    }

    /// There is no system tray here.
    void IsMinimisedWithoutTray()
    {
        MemorySettings settings;
        MainForm form;
        form.show();
        FormClosing closing(&settings);
        closing.BeginSession();
        form.minimize.click();
        QVERIFY(form.isVisible() && form.isMinimized());
        QCoreApplication::processEvents();
        form.close();
        QVERIFY(!form.isVisible());
    }

    void TellsOnceOfTheTray()
    {
        MemorySettings settings;
        VTQsClientPrivate window;
        new QSystemTrayIcon(&window);
        MainForm form;
        FormClosingWithTray closing(&settings);
        closing.BeginSession();
        form.show();
        form.close(); // by the client
        QVERIFY(!settings.values.contains(SettingKeys::TrayTold));
        form.show();
        form.minimize.click();
        QVERIFY(!form.isVisible());
        QVERIFY(settings.Value(SettingKeys::TrayTold, false).toBool());
    }
};

QTEST_MAIN(TestMainForm)
#include "tst_hostui_mainform.moc"
