#include "host/mainform/form_follower.h"
#include "host/mainform/shortcuts.h"
#include "host/settings/setting_keys.h"
#include "host/ui/column_fit.h"
#include "host/ui/form_layout.h"
#include "host/ui/frameless_window.h"
#include "host/ui/screen_fit.h"
#include "host/ui/window_place.h"
#include "tests/hostui/memory_settings.h"
#include "tests/hostui/small_form.h"
#include "tests/support/test_tables.h"
#include "tests/support/waiting.h"

#include <QtWidgets>

namespace {

const QRect Child(100, 50, 200, 40);

/// A layout, and where it places the child.
const std::tuple<const char*, QByteArray, QRect> placements[] = {
    {"left and right", "[list]\nleft=10\nright=20\n", {10, 50, 970, 40}},
    {"form too narrow", "[list]\nleft=600\nright=600\n", {600, 50, 0, 40}},
    {"top and bottom", "[list]\ntop=5\nbottom=10\n", {100, 5, 200, 785}},
    {"words for numbers", "[list]\nleft=wide\nright=\nwidth=1e\n", Child},
    {"narrow form", "[layout]\nnarrowBelow=1001\n[list]\nleft=10\nright=20\nnarrow\\left=5\n",
        {5, 50, 975, 40}},
    {"wide form", "[layout]\nnarrowBelow=1000\n[list]\nleft=10\nright=20\nnarrow\\left=5\n",
        {10, 50, 970, 40}},
    {"follows nobody", "[list]\nwith=nobody\n", Child},
};

const QRect Start(100, 100, 400, 300);

/// Where and how far the mouse drags, and the geometry of a main window and of a dialog afterwards.
const std::tuple<const char*, QPoint, QPoint, QRect, QRect> drags[] = {
    {"middle", {200, 150}, {30, 99}, Start, Start},
    {"title", {200, 20}, {40, 30}, {140, 130, 400, 300}, {140, 130, 400, 300}},
    {"left", {4, 150}, {30, 99}, {130, 100, 370, 300}, Start},
    {"right", {399, 150}, {30, 99}, {100, 100, 430, 300}, Start},
    {"top", {200, 0}, {30, -50}, {100, 50, 400, 350}, Start.translated(30, -50)},
    {"corner", {0, 10}, {-15, -16}, {85, 84, 415, 316}, Start.translated(-15, -16)},
    {"left too far", {0, 150}, {900, 0}, {300, 100, 200, 300}, Start},
};

/// A width, shares of it, and the widths of the columns.
const std::tuple<const char*, int, std::vector<int>, std::vector<int>> columns[] = {
    {"all of it", 100, {1, 1, 1}, {33, 33, 34}},
    {"stored for a wider table", 300, {300, 100, 200}, {150, 50, 100}},
    {"too small a share", 300, {5000, 0, -7}, {220, 40, 40}},
    {"table too narrow", 60, {1, 1, 1}, {20, 20, 20}},
    {"no table", 0, {1, 1}, {0, 0}},
};

/// A stored place, and where the form appears; the screen is 800 by 600 pixels.
const std::tuple<const char*, QRect, QRect> storedPlaces[] = {
    {"none", {}, {200, 150, 400, 300}},
    {"stored", {7, 9, 500, 310}, {7, 9, 500, 310}},
    {"on a screen that is gone", {5000, -900, 500, 310}, {300, 0, 500, 310}},
    {"larger than the screen", {100, 100, 2000, 2000}, {0, 0, 800, 600}},
};

FormLayout ReadFrom(const QByteArray& text)
{
    QTemporaryFile file;
    if (!file.open() || file.write(text) != text.size() || !file.flush())
        qFatal("cannot write a temporary file");
    return FormLayout::Read(file.fileName());
}

} // namespace

/// Placement of a form's children; moving and resizing a frameless window.
class TestLayout : public QObject
{
    Q_OBJECT

private slots:
    void PlacesChildren_data() { AddRows(placements); }
    void PlacesChildren()
    {
        const auto& [name, text, place] = Row(placements);
        const FormLayout layout = ReadFrom(text);
        const QRect whole(0, 0, 1000, 800);
        QWidget form;
        form.setObjectName("form"_s);
        form.setGeometry(whole);
        QWidget list(&form);
        list.setObjectName("list"_s);
        list.setGeometry(Child);
        layout.Apply(&form);
        QCOMPARE(list.geometry(), place);
        QCOMPARE(form.geometry(), whole);
    }

    void DragsEdgesAndTitle_data() { AddRows(drags); }
    void DragsEdgesAndTitle()
    {
        const auto& [name, from, delta, main, dialog] = Row(drags);
        for (const auto kind : {FramelessWindow::Main, FramelessWindow::Dialog}) {
            QWidget form;
            form.setMinimumSize(200, 150);
            form.setGeometry(Start);
            new FramelessWindow(&form, kind);
            const QPoint global = form.mapToGlobal(from);
            const QPoint to = from + delta;
            QMouseEvent press(QEvent::MouseButtonPress, from, global, Qt::LeftButton, Qt::LeftButton, {});
            QMouseEvent move(QEvent::MouseMove, to, global + delta, Qt::NoButton, Qt::LeftButton, {});
            QMouseEvent release(QEvent::MouseButtonRelease, to, global + delta, Qt::LeftButton, {}, {});
            QMouseEvent after(QEvent::MouseMove, to, global, Qt::NoButton, Qt::LeftButton, {});
            for (QMouseEvent* event : {&press, &move, &release, &after})
                QCoreApplication::sendEvent(&form, event);
            QCOMPARE(form.geometry(), kind == FramelessWindow::Main ? main : dialog);
        }
    }

    void SharesWidthsOut_data() { AddRows(columns); }
    void SharesWidthsOut()
    {
        const auto& [name, total, shares, widths] = Row(columns);
        QCOMPARE(ScaledTo(total, shares, 40), widths);
    }

    void AppearsWhereItWas_data() { AddRows(storedPlaces); }
    void AppearsWhereItWas()
    {
        const auto& [name, stored, place] = Row(storedPlaces);
        MemorySettings settings;
        if (stored.isValid())
            settings.SetValue(SettingKeys::WindowPlace, stored);
        MainForm form;
        new WindowPlace(&form, &settings);
        form.show();
        QCOMPARE(form.geometry(), place);
        // While it settles, the form is put back to its place.
        const QRect moved(30, 40, 450, 330);
        EVENTUALLY((form.setGeometry(moved), settings.Value(SettingKeys::WindowPlace, {}).toRect() == moved));
        form.maximize.click();
        EVENTUALLY(settings.Value(SettingKeys::WindowMaximized, {}).toBool());
        QCOMPARE(settings.Value(SettingKeys::WindowPlace, {}).toRect(), moved);

        MainForm next;
        new WindowPlace(&next, &settings);
        next.show();
        EVENTUALLY(next.isMaximized());
    }

    void FitsDialogsOnSmallScreens()
    {
        const QSize room(640, 360);
        for (const int least : {100, 500}) {
            QDialog form;
            auto* column = new QVBoxLayout(&form);
            auto* body = new QWidget;
            body->setObjectName("wgtBody"_s);
            body->setMinimumHeight(least);
            column->addWidget(body);
            form.setFixedSize(540, 520);
            for (int shown = 0; shown < 2; ++shown)
                FitScreen(&form, room);
            QCOMPARE(form.size(), QSize(540, 360));
            QCOMPARE(form.findChildren<QScrollArea*>().size(), int(least > room.height()));
            QVERIFY(form.isAncestorOf(body));
        }
    }

    /// A user's columns fill a table of any width, in each session. Only the first session begins on the tab of the
    /// last run.
    void KeepsColumnsAndTab()
    {
        MemorySettings settings;
        settings.SetValue(SettingKeys::Tab, 2);
        settings.SetValue("vtr.account.ann/columns.twtDownload"_s, QVariantList {2, 1, 1, 1, 1, 2});
        MainForm form;
        form.show();
        FormFollower follower(&settings);
        follower.BeginSession("ann"_s);
        QCOMPARE(form.tabs.currentIndex(), 2);
        auto* table = form.findChild<QTableWidget*>("twtDownload"_s);
        for (const int width : {400, 720}) {
            form.tabs.resize(width, 300);
            table->resizeColumnsToContents();
            EVENTUALLY(table->columnWidth(0) == table->viewport()->width() / 4);
            QCOMPARE(table->horizontalHeader()->length(), table->viewport()->width());
        }

        QWidget* header = table->horizontalHeader()->viewport();
        const QPoint edge(table->columnWidth(0) - 1, header->height() / 2);
        QTest::mousePress(header, Qt::LeftButton, {}, edge);
        QMouseEvent move(QEvent::MouseMove, edge - QPoint(50, 0), Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(header, &move);
        QTest::mouseRelease(header, Qt::LeftButton, {}, edge - QPoint(50, 0));
        QCOMPARE(settings.values["vtr.account.ann/columns.twtDownload"_s].toList().value(0).toInt(),
            table->columnWidth(0));
        follower.BeginSession("bob"_s);
        QCOMPARE(form.tabs.currentIndex(), 0);
        EVENTUALLY(table->columnWidth(0) < table->columnWidth(1)); // a path needs more room than a name
    }

    void ActsOnItsKeys()
    {
        MainForm form;
        QPushButton search(&form);
        QPushButton remove(&form);
        search.setObjectName("btnSearch"_s);
        remove.setObjectName("btnDelete"_s);
        QPushButton page(&form);
        page.setObjectName("btnPageOne"_s);
        form.show();
        form.activateWindow();
        auto* table = form.findChild<QTableWidget*>("twtMyRender"_s);
        table->setItem(1, 0, new QTableWidgetItem("7"_s));
        auto* bar = new QProgressBar;
        bar->setValue(30);
        table->setCellWidget(1, 3, bar);
        table->setCurrentCell(1, 0);
        table->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        QSignalSpy searches(&search, &QPushButton::clicked);
        QSignalSpy deletions(&remove, &QPushButton::clicked);
        Shortcuts shortcuts;
        shortcuts.BeginSession();
        shortcuts.BeginSession();
        QTest::keyClick(table, Qt::Key_F, Qt::ControlModifier);
        QTest::keyClick(table, Qt::Key_Delete);
        QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(searches.count(), 1);
        QCOMPARE(deletions.count(), 1);
        QCOMPARE(QGuiApplication::clipboard()->text(), "7\t\t\t30%\t\t"_s);
        search.hide();
        QTest::keyClick(table, Qt::Key_F, Qt::ControlModifier);
        form.minimize.setFocus();
        QTest::keyClick(&form.minimize, Qt::Key_Delete);
        QCOMPARE(searches.count(), 1);
        QCOMPARE(deletions.count(), 1);
        // Turning a page moves the focus to the button of the page.
        page.setFocus();
        QTest::keyClick(&page, Qt::Key_Delete);
        QCOMPARE(deletions.count(), 2);
        QTest::keyClick(&page, Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(table->currentRow(), 2); // as in the table, where the plugin's key turns the page
    }
};

QTEST_MAIN(TestLayout)
#include "tst_hostui_layout.moc"
