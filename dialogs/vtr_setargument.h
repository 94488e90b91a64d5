#pragma once

#include "common/vtr_dialogform.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantList>
#include <QVector>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTableWidget;
struct VTFrameRange;
struct VTServices;

/// Controller of the set-argument dialog: edits the render arguments of the local task in the task table's current row.
class VTSetArgument : public QObject
{
    Q_OBJECT

public:
    /// @param pForm not owned, never null.
    /// @param pTaskTable table of the local tasks; not owned.
    VTSetArgument(QWidget* pForm, QTableWidget* pTaskTable);

    /// @param services must live until Retire().
    void SetServices(const VTServices& services) { m_pServices = &services; }

    /// Stops using the services, whose owner is deleted before this object.
    void Retire() { m_pServices = nullptr; }

    /// Finds the form's widgets and connects them. To be called once, before anything else.
    void InitWidgets();

    void EndSession() { m_form.CloseIfOpen(); }

signals:
    /// The user has confirmed a task's arguments, one map per group.
    void setArgument(QString strId, QVariantList lstData);

public slots:
    void ChangeSkin(QString strSkin);
    void ChangeLanguage();
    /// Runs the dialog for the current task.
    void TriggerSetArgument();
    void TriggerArgumentOk();
    /// Shows the rows of the first nGroup frame ranges and lays the rest of the form out below them.
    void AddFrameRange(int nGroup);

private:
    struct Group
    {
        QSpinBox* pStartFrame;
        QSpinBox* pEndFrame;
        QWidget* pRow;
        QLabel* pCaption;
    };

    bool IsBound() const { return m_form.Form() && !m_lstGroup.isEmpty(); }
    void FindWidgets();
    void ReadArguments(const QVariantList& lstArguments);
    bool Accepts(const VTFrameRange& range) const;
    void StoreArguments(const QVariantList& lstArguments);

    VTDialogForm m_form;
    QPointer<QTableWidget> m_pTaskTable;
    const VTServices* m_pServices = nullptr;
    QPushButton* m_pBtnClose = nullptr;
    QLabel* m_pLblJobName = nullptr;
    QLabel* m_pLblGroup = nullptr;
    QSpinBox* m_pSpbGroup = nullptr;
    QVector<Group> m_lstGroup;
    QWidget* m_pWgtImageSize = nullptr;
    QLabel* m_pLblImageSize = nullptr;
    QLineEdit* m_pLneImageWidth = nullptr;
    QLineEdit* m_pLneImageHeight = nullptr;
    QCheckBox* m_pChkPrerender = nullptr;
    QPushButton* m_pBtnOk = nullptr;
};
