#include "common/vtr_dialogform.h"

#include "common/vtr_showform.h"
#include "common/vtr_skin.h"

#include <QDialog>

VTDialogForm::VTDialogForm(QWidget* pForm, const QString& strKey)
    : m_pForm(pForm)
    , m_strKey(strKey)
{
}

QDialog* VTDialogForm::Dialog() const
{
    return qobject_cast<QDialog*>(m_pForm.data());
}

void VTDialogForm::SetDialogFlags() const
{
    m_pForm->setWindowFlags(Qt::WindowMinimizeButtonHint | Qt::MSWindowsFixedSizeDialogHint | Qt::Dialog
        | Qt::FramelessWindowHint);
}

void VTDialogForm::ApplySkin(const QString& strSkin) const
{
    if (!m_pForm)
        return;
    VTSkin::ApplyToForm(m_pForm, strSkin, m_strKey);
    m_pForm->setWindowIcon(VTSkin::MainIcon(strSkin));
}

void VTDialogForm::Exec() const
{
    const QPointer<QDialog> pDialog = Dialog();
    if (!pDialog || pDialog->isVisible())
        return;
    // QDialog::exec() never returns from a dialog that is closed while it is being shown.
    pDialog->setModal(true);
    if (VTShowForm(pDialog))
        pDialog->exec();
}

void VTDialogForm::Close() const
{
    if (m_pForm)
        m_pForm->close();
}

void VTDialogForm::CloseIfOpen() const
{
    if (m_pForm && m_pForm->isVisible())
        m_pForm->close();
}
