#pragma once

#include "common/vtr_dialogform.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

class QCheckBox;
class QComboBox;
class QDateTimeEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QStyledItemDelegate;

/// Controller of the job search form: offers the filters and turns the filled-in fields into conditions of the job
/// list.
class VTSearch : public QObject
{
    Q_OBJECT

public:
    /// @param pForm not owned, never null.
    explicit VTSearch(QWidget* pForm);

    /// Finds the form's widgets and connects them. To be called once, before anything else.
    void InitWidgets();

signals:
    /// The user has started a search. The map belongs to the sender; a receiver may change it during the call.
    void search(QVariantMap& mapCondition);

public slots:
    void ClickSearch();
    void ClickReset();
    /// Empties the fields and fills the combo boxes again.
    void Update();
    void Show();
    void UpdateTimeEditStatus();
    void ChangeSkin(QString strSkin);
    void ChangeLanguage();
    void Close();
    /// Stores the projects of the answer. They appear with the next `Update()`.
    void TriggerProjectListResponse(int nRet, QVariantMap mapData);

private:
    bool IsBound() const { return m_form.Form() && m_pBtnSearchJob; }
    void FindWidgets();
    void FillJobTypes();
    void FillJobStatus();
    void FillProjects();
    void FillBusinessTypes();
    void ResetTimes();

    VTDialogForm m_form;
    QLabel* m_pLblJobId = nullptr;
    QLabel* m_pLblJobName = nullptr;
    QLabel* m_pLblJobType = nullptr;
    QLabel* m_pLblJobStatus = nullptr;
    QLabel* m_pLblProjectName = nullptr;
    QLabel* m_pLblBusinessType = nullptr;
    QCheckBox* m_pChkStartTime = nullptr;
    QCheckBox* m_pChkEndTime = nullptr;
    QLineEdit* m_pLneJobId = nullptr;
    QLineEdit* m_pLneJobName = nullptr;
    QComboBox* m_pCmbJobType = nullptr;
    QComboBox* m_pCmbJobStatus = nullptr;
    QComboBox* m_pCmbProjectName = nullptr;
    QComboBox* m_pCmbBusinessType = nullptr;
    QDateTimeEdit* m_pDteStartLower = nullptr;
    QDateTimeEdit* m_pDteStartUpper = nullptr;
    QDateTimeEdit* m_pDteEndLower = nullptr;
    QDateTimeEdit* m_pDteEndUpper = nullptr;
    QPushButton* m_pBtnClose = nullptr;
    QPushButton* m_pBtnSearchJob = nullptr;
    QPushButton* m_pBtnReset = nullptr;
    QStyledItemDelegate* m_pItemDelegate = nullptr;
    QVariantList m_lstProject;
    QMap<int, QString> m_mapStatus;
};
