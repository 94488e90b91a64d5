#include "tests/standins/form_roster.h"

#include "tests/standins/stand_in.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTreeView>

namespace {

template <class Widget>
QWidget* New(QWidget* form)
{
    return new Widget(form);
}

struct Entry
{
    QString form;
    QWidget* (*make)(QWidget*);
    QString names; ///< with blanks between
};

const QString tables = "twtMyRender twtLocalTask twtDownload"_s;

const Entry roster[] = {
    {"com.vtr.qsclient"_s, New<QPushButton>,
        "btnSystemClose btnSystemMin btnSystemMaxmax btnSystemMaxnormal btnRecover btnPause btnStop "
        "btnRestart "
        "btnSearch btnDelete btnFullRender btnRecharge btnLang btnMessage btnSkin btnSubmit btnSettings "
        "btnNextPage "
        "btnNextGroup btnPageFive btnPageFour btnPageThree btnPageTwo btnPageOne btnPreGroup btnPrePage"_s},
    {"com.vtr.qsclient"_s, New<QLabel>,
        "lblUserName lblRmb lblRmbU lblCyb lblCybU lblBalance lblHotline lblVersion lblVersionV lblChargeC "
        "lblCharge "
        "lblChargeV lblProject lblProjectV"_s},
    {"com.vtr.qsclient"_s, New<QCheckBox>, "chkAll"_s},
    {"com.vtr.qsclient"_s, New<QTreeView>, "myRender"_s},
    {"com.vtr.qsclient"_s, New<QWidget>, "wgtGroup"_s},
    {"com.vtr.setargument"_s, New<QPushButton>, "btnClose btnOk"_s},
    {"com.vtr.setargument"_s, New<QLabel>, "lblJobName lblGroup lblImageSize"_s},
    {"com.vtr.setargument"_s, New<QLineEdit>, "lneImageWidth lneImageHeight"_s},
    {"com.vtr.setargument"_s, New<QSpinBox>, "spbGroup"_s},
    {"com.vtr.setargument"_s, New<QWidget>, "wgtImageSize"_s},
    {"com.vtr.setargument"_s, New<QCheckBox>, "chkPrerender"_s},
    {"com.vtr.setparent"_s, New<QTableWidget>, "twtJobList"_s},
    {"com.vtr.setparent"_s, New<QPushButton>, "btnCloseSetParent btnOkSetParent"_s},
    {"com.vtr.search"_s, New<QLabel>,
        "lblJobID lblJobName lblJobType lblJobStatus lblProjectName lblBusinessType"_s},
    {"com.vtr.search"_s, New<QCheckBox>, "checkBox_startTimeRange checkBox_endTimeRange"_s},
    {"com.vtr.search"_s, New<QLineEdit>, "lneJobId lneJobName"_s},
    {"com.vtr.search"_s, New<QComboBox>, "cmbJobType cmbJobStatus cmbProjectName cmbBusinessType"_s},
    {"com.vtr.search"_s, New<QDateTimeEdit>,
        "dteStartTimeLower dteStartTimeUpper dteEndTimeLower dteEndTimeUpper"_s},
    {"com.vtr.search"_s, New<QPushButton>, "btnCloseSearch btnSearchJob btnReset"_s},
    {"com.vtr.inputdialog"_s, New<QPushButton>, "btnClose btnOk btnCancel"_s},
    {"com.vtr.inputdialog"_s, New<QLabel>, "lblTip lblTitle"_s},
    {"com.vtr.inputdialog"_s, New<QLineEdit>, "lneInput"_s},
};

void AddTabs(QWidget* form, const QStringList& leftOut)
{
    auto* tabs = new QTabWidget(form);
    tabs->setObjectName("tbwContainer"_s);
    tabs->setGeometry(0, 50, 400, 300);
    for (const QString& name : tables.split(" "_s)) {
        const bool hasTable = !leftOut.contains(name);
        QWidget* page = hasTable ? new QTableWidget : new QWidget;
        page->setObjectName(hasTable ? name : QString());
        page->setContextMenuPolicy(Qt::CustomContextMenu);
        tabs->addTab(page, QString());
    }
}

void AddFrameRanges(QWidget* form)
{
    for (int i = 0; i < 15; ++i) {
        New<QSpinBox>(form)->setObjectName("spbStartFrame_%1"_s.arg(i));
        New<QSpinBox>(form)->setObjectName("spbEndFrame_%1"_s.arg(i));
        New<QWidget>(form)->setObjectName("wgtFrameRange_%1"_s.arg(i));
        New<QLabel>(form)->setObjectName("lblFrameRange_%1"_s.arg(i));
    }
}

} // namespace

QStringList MainFormNames()
{
    QStringList names = QString("tbwContainer "_s + tables).split(" "_s);
    for (const Entry& entry : roster) {
        if (entry.form == "com.vtr.qsclient"_s)
            names += entry.names.split(" "_s);
    }
    return names;
}

QWidget* NewForm(const QString& key, const QStringList& leftOut)
{
    const bool isMain = key == "com.vtr.qsclient"_s;
    QWidget* form = isMain ? new QWidget : new QDialog;
    form->resize(600, 500);
    if (isMain && !leftOut.contains("tbwContainer"_s))
        AddTabs(form, leftOut);
    if (key == "com.vtr.setargument"_s)
        AddFrameRanges(form);
    int count = 0;
    for (const Entry& entry : roster) {
        for (const QString& name : entry.names.split(" "_s)) {
            if (entry.form != key || leftOut.contains(name))
                continue;
            // Below each other, each a little wider than the one before.
            ++count;
            QWidget* widget = entry.make(form);
            widget->setObjectName(name);
            widget->setGeometry(500 + count, 10 * count, 20 + count, 10);
        }
    }
    return form;
}
