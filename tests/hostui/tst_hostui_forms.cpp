#include "skins.h"
#include "ui_loader_service.h"

#include <QDirIterator>
#include <QHeaderView>
#include <QImageReader>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>
#include <QtTest>

#include <memory>

namespace {

/// Object names of one type in one form.
struct Group
{
    const char* key;
    const char* type;
    const char* names;
};

constexpr Group Rosters[] = {
    {"com.vtr.qsclient", "QPushButton",
        "btnSystemClose btnSystemMin btnSystemMaxmax btnSystemMaxnormal btnRecover btnPause btnStop "
        "btnRestart "
        "btnSearch btnDelete btnFullRender btnRecharge btnLang btnPrePage btnNextPage btnPreGroup "
        "btnNextGroup "
        "btnPageOne btnPageTwo btnPageThree btnPageFour btnPageFive btnMessage btnSkin btnSubmit "
        "btnSettings"},
    {"com.vtr.qsclient", "QLabel",
        "lblUserName lblRmb lblRmbU lblCyb lblCybU lblBalance lblHotline lblVersion lblVersionV lblChargeC "
        "lblCharge "
        "lblChargeV lblProject lblProjectV"},
    {"com.vtr.qsclient", "QTableWidget", "twtMyRender twtLocalTask twtDownload"},
    {"com.vtr.qsclient", "QTabWidget", "tbwContainer"},
    {"com.vtr.qsclient", "QTreeView", "myRender"},
    {"com.vtr.qsclient", "QCheckBox", "chkAll"},
    {"com.vtr.qsclient", "QWidget", "wgtGroup"},
    {"com.vtr.search", "QLabel",
        "lblJobID lblJobName lblJobType lblJobStatus lblProjectName lblBusinessType"},
    {"com.vtr.search", "QCheckBox", "checkBox_startTimeRange checkBox_endTimeRange"},
    {"com.vtr.search", "QLineEdit", "lneJobId lneJobName"},
    {"com.vtr.search", "QComboBox", "cmbJobType cmbJobStatus cmbProjectName cmbBusinessType"},
    {"com.vtr.search", "QDateTimeEdit",
        "dteStartTimeLower dteStartTimeUpper dteEndTimeLower dteEndTimeUpper"},
    {"com.vtr.search", "QPushButton", "btnCloseSearch btnSearchJob btnReset"},
    {"com.vtr.setargument", "QDialog", ""},
    {"com.vtr.setargument", "QPushButton", "btnClose btnOk"},
    {"com.vtr.setargument", "QLabel", "lblJobName lblFrameRange lblImageSize lblGroup lblFrameRange_%1"},
    {"com.vtr.setargument", "QSpinBox", "spbGroup spbStartFrame_%1 spbEndFrame_%1"},
    {"com.vtr.setargument", "QWidget", "wgtImageSize wgtFrameRange_%1"},
    {"com.vtr.setargument", "QLineEdit", "lneImageWidth lneImageHeight"},
    {"com.vtr.setargument", "QCheckBox", "chkPrerender"},
    {"com.vtr.setparent", "QDialog", ""},
    {"com.vtr.setparent", "QTableWidget", "twtJobList"},
    {"com.vtr.setparent", "QPushButton", "btnCloseSetParent btnOkSetParent"},
    {"com.vtr.inputdialog", "QDialog", ""},
    {"com.vtr.inputdialog", "QPushButton", "btnClose btnOk btnCancel"},
    {"com.vtr.inputdialog", "QLabel", "lblTip lblTitle"},
    {"com.vtr.inputdialog", "QLineEdit", "lneInput"},
};

constexpr int FrameRangeRows = 15;

/// The names of a group, "%1" standing for the numbers of the frame-range rows.
QStringList NamesOf(const Group& group)
{
    QStringList names;
    const QStringList patterns = QString::fromLatin1(group.names).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString& pattern : patterns) {
        if (!pattern.contains(QLatin1String("%1")))
            names.append(pattern);
        else
            for (int row = 0; row < FrameRangeRows; ++row)
                names.append(pattern.arg(row));
    }
    return names;
}

} // namespace

class TestForms : public QObject
{
    Q_OBJECT

private slots:
    void RosterIsComplete_data();
    void RosterIsComplete();
    void WhatTheClientMovesIsPlacedByTheFormItself();
    void TablesAreSetUp();
    void DefaultFormShowsAPageOfRows();
    void CaptionsFit();
    void SkinFilesAreWhole();

private:
    std::unique_ptr<QWidget> Load(const char* key)
    {
        std::unique_ptr<QWidget> form(m_loader.LoadUi(QLatin1String(key), nullptr));
        if (form)
            form->setStyleSheet(Skins::StyleSheet(m_loader.GetSkin(), QLatin1String(key)));
        return form;
    }

    UiLoaderService m_loader {nullptr};
};

void TestForms::RosterIsComplete_data()
{
    QTest::addColumn<int>("group");
    for (int i = 0; i < int(std::size(Rosters)); ++i)
        QTest::addRow("%s %s", Rosters[i].key, Rosters[i].type) << i;
}

void TestForms::RosterIsComplete()
{
    QFETCH(int, group);
    const auto form = Load(Rosters[group].key);
    QVERIFY(form);
    const QStringList names = NamesOf(Rosters[group]);
    if (names.isEmpty())
        QVERIFY(form->inherits(Rosters[group].type));
    for (const QString& name : names) {
        const auto* child = form->findChild<QWidget*>(name);
        QVERIFY2(child && child->inherits(Rosters[group].type), qPrintable(name));
        QCOMPARE(form->findChildren<QWidget*>(name).size(), 1);
    }
}

void TestForms::WhatTheClientMovesIsPlacedByTheFormItself()
{
    const auto form = Load("com.vtr.qsclient");
    QVERIFY(!form->layout());
    for (const char* name :
        {"btnPrePage", "btnPreGroup", "btnPageOne", "btnPageTwo", "btnPageThree", "btnPageFour",
            "btnPageFive", "btnNextGroup", "btnNextPage", "chkAll", "btnDelete", "btnFullRender", "btnPause",
            "btnSearch", "btnRecover", "btnRestart", "btnStop", "tbwContainer", "wgtGroup"})
        QVERIFY2(form->findChild<QWidget*>(QLatin1String(name), Qt::FindDirectChildrenOnly), name);
    QVERIFY(!form->findChild<QWidget*>(QStringLiteral("wgtGroup"))->layout());
    for (const char* hidden : {"btnStop", "btnSystemMaxmax", "myRender"})
        QVERIFY2(form->findChild<QWidget*>(QLatin1String(hidden))->isHidden(), hidden);

    const auto dialog = Load("com.vtr.setargument");
    QVERIFY(!dialog->layout());
}

void TestForms::TablesAreSetUp()
{
    const auto form = Load("com.vtr.qsclient");
    const auto tables = form->findChildren<QTableWidget*>();
    QCOMPARE(tables.size(), 3);
    for (const QTableWidget* table : tables) {
        QCOMPARE(table->columnCount(), 6);
        QCOMPARE(table->editTriggers(), QAbstractItemView::NoEditTriggers);
        QCOMPARE(table->contextMenuPolicy(), Qt::CustomContextMenu);
        QCOMPARE(table->selectionBehavior(), QAbstractItemView::SelectRows);
    }
}

void TestForms::DefaultFormShowsAPageOfRows()
{
    const auto form = Load("com.vtr.qsclient");
    auto* table = form->findChild<QTableWidget*>(QStringLiteral("twtMyRender"));
    table->setRowCount(18);
    form->show();
    QVERIFY(QTest::qWaitForWindowExposed(form.get()));
    QVERIFY(table->rowHeight(0) >= 32); // the margins of a progress bar take 18 of it
    QVERIFY(table->viewport()->height() >= table->verticalHeader()->length());
}

void TestForms::CaptionsFit()
{
    const auto form = Load("com.vtr.qsclient");
    form->show();
    const auto buttons = form->findChildren<QAbstractButton*>(QString(), Qt::FindDirectChildrenOnly);
    for (QAbstractButton* button : buttons) {
        button->ensurePolished();
        if (!button->text().isEmpty())
            QVERIFY2(button->sizeHint().width() <= button->width(), qPrintable(button->objectName()));
    }
}

void TestForms::SkinFilesAreWhole()
{
    const QRegularExpression picture(QStringLiteral("url\\(([^)]+)\\)"));
    int pictures = 0;
    QDirIterator files(QStringLiteral(":/default"),
        {QStringLiteral("*.qss"), QStringLiteral("*.ini"), QStringLiteral("*.svg"), QStringLiteral("*.png")},
        QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (path.endsWith(QLatin1String(".svg")) || path.endsWith(QLatin1String(".png"))) {
            QVERIFY2(!QImageReader(path).read().isNull(), qPrintable(path));
            continue;
        }
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        QVERIFY2(!text.contains(QLatin1Char('@')), qPrintable(path)); // a colour that the palette lacks
        auto found = picture.globalMatch(text);
        while (found.hasNext()) {
            const QString name = found.next().captured(1);
            QVERIFY2(QFile::exists(name), qPrintable(path + QLatin1Char(' ') + name));
            ++pictures;
        }
    }
    QVERIFY(pictures > 0);
    for (const char* name : {"main.png", "warning.png", "siblings_normal.png", "siblings_closed_normal.png",
             "en_normal.png", "en_hover.png", "en_pressed.png"})
        QVERIFY2(QFile::exists(QLatin1String(":/default/") + QLatin1String(name)), name);
}

QTEST_MAIN(TestForms)
#include "tst_hostui_forms.moc"
