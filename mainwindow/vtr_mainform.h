#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QTabWidget>
#include <QTreeView>

#include <array>

/// The widgets of the main form, found by object name. None is owned or null: a missing one is logged and
/// replaced by a hidden stand-in.
struct VTMainForm
{
    explicit VTMainForm(QWidget* pForm);

    QWidget* pForm;

    QPushButton* btnSystemClose;
    QPushButton* btnSystemMin;
    QPushButton* btnSystemMaxmax;    ///< shown while maximised
    QPushButton* btnSystemMaxnormal; ///< shown in normal size
    QPushButton* btnSettings;
    QPushButton* btnSkin;
    QPushButton* btnMessage;
    QPushButton* btnLang;

    QPushButton* btnRecover;
    QPushButton* btnPause;
    QPushButton* btnStop; // contract: connected to nothing
    QPushButton* btnRestart;
    QPushButton* btnSearch;
    QPushButton* btnDelete;
    QPushButton* btnFullRender;
    QPushButton* btnSubmit;
    QCheckBox* chkAll;

    QTreeView* myRender; // contract: found but never used
    QWidget* wgtGroup;

    QTabWidget* tbwContainer;
    QTableWidget* twtMyRender;
    QTableWidget* twtLocalTask;
    QTableWidget* twtDownload;

    QLabel* lblUserName;
    QLabel* lblRmb;
    QLabel* lblRmbU;
    QLabel* lblCyb;
    QLabel* lblCybU;
    QLabel* lblBalance;
    QLabel* lblHotline;
    QLabel* lblVersion;
    QLabel* lblVersionV;
    QLabel* lblChargeC;
    QLabel* lblCharge;
    QLabel* lblChargeV; // contract: found but never used
    QPushButton* btnRecharge;

    QPushButton* btnNextPage;
    QPushButton* btnNextGroup;
    /// Page-number buttons in the order of their pages.
    std::array<QPushButton*, 5> btnPages;
    QPushButton* btnPreGroup;
    QPushButton* btnPrePage;

    /// All buttons of the page bar, from right to left.
    std::array<QPushButton*, 9> PageButtons() const;

    /// Table of a tab; null for a tab that has none.
    QTableWidget* Table(int nTab) const;
    QTableWidget* CurrentTable() const { return Table(tbwContainer->currentIndex()); }

    /// Raises the widgets that lie over the tabs.
    void RaiseOverlays() const;
};
