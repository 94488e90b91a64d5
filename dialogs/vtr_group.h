#pragma once

#include "common/vtr_dialogform.h"
#include "common/vtr_listfile.h"

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QToolBox>

class QAction;
class QDialog;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QMenu;
class QPushButton;
struct VTServices;

/// Controller of the group panel: filters the job list by status or by the user's own groups of jobs, called projects.
///
/// The widgets it builds belong to the main form. Until the first sign-in there is no group file.
class VTGroup : public QObject
{
    Q_OBJECT

public:
    /// None is owned; none may be null.
    VTGroup(QWidget* mainForm, QWidget* wgtGroup, QDialog* inputDialog);

    /// @param services must live until Retire().
    void SetServices(const VTServices& services) { m_pServices = &services; }

    /// Stops using the services, whose owner is deleted before this object.
    void Retire() { m_pServices = nullptr; }

    /// Builds the two pages and the menu. To be called once, before anything else.
    void InitWidgets();

    void EndSession() { m_inputForm.CloseIfOpen(); }

    /// Condition text of the current project, from the file as it is now.
    QString CurrentProjectCondition();

    /// Index of the open page.
    int CurrentPage() const;

signals:
    /// The user has chosen a filter. An empty condition text means all jobs.
    void condition(QString strCondition);

public slots:
    /// Refills the list of groups from the file. If the current project is no longer among them, the first group becomes
    /// current.
    void UpdateGroup();
    void ChangeLanguage();
    void AddGroup();
    void Login(QString strServer, QString strUsername, QString strToken, QString strUserId);
    void CustomContextMenu(QPoint pos);
    void DeleteGroup();
    void StatusItemClicked(QListWidgetItem* item);
    void GroupItemClicked(QListWidgetItem* item);
    void CurrentChanged(int index);
    void ChangeSkin(QString strSkin);
    void ClickedOk();
    void ClickedCancel();
    void WindowSizeChanged();

private:
    bool IsBound() const { return m_pToolBox && m_pGroupList; }
    void BuildInputDialog();
    void BuildStatusPage();
    void BuildGroupPage();
    void BuildMenu();
    QString CurrentProject() const;
    void SetCurrentProject(const QString& strName);
    QString CurrentProjectKey() const;
    void AddNamedGroup(const QString& strName);
    void ReportUnsaved() const;

    QPointer<QWidget> m_pMainForm;
    QPointer<QWidget> m_pWgtGroup;
    QPointer<QToolBox> m_pToolBox; ///< while it exists, all widgets of the main form exist
    VTDialogForm m_inputForm;
    QLabel* m_pLblProject = nullptr;
    QLabel* m_pLblProjectV = nullptr;
    QListWidget* m_pStatusList = nullptr;
    QListWidget* m_pGroupList = nullptr;
    QMenu* m_pMenu = nullptr;
    QAction* m_pActAdd = nullptr;
    QAction* m_pActDelete = nullptr;
    QPushButton* m_pBtnOk = nullptr;
    QPushButton* m_pBtnCancel = nullptr;
    QLabel* m_pLblTip = nullptr;
    QLabel* m_pLblTitle = nullptr;
    QLineEdit* m_pLneInput = nullptr;
    const VTServices* m_pServices = nullptr;
    VTListFile m_groups;
    QString m_strUserName;
    QString m_strClosedIcon;
    QString m_strOpenIcon;
    int m_nPreviousPage = 0;
    int m_nUpdate = 0; ///< changes whenever the list of groups is refilled
};
