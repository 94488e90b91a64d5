#include "mainwindow/vtr_forms.h"

#include "common/vtr_ids.h"
#include "vtr_uiloaderinterface.h"

#include <QDialog>
#include <QtDebug>

#include <algorithm>

namespace {

template <typename Form>
Form* Load(VTUiLoaderInterface* pUiLoader, const QString& strKey)
{
    QWidget* pLoaded = pUiLoader ? pUiLoader->LoadUi(strKey, nullptr) : nullptr;
    if (auto* pForm = qobject_cast<Form*>(pLoaded))
        return pForm;
    qCritical(
        "Form %s is missing or is not a %s", qUtf8Printable(strKey), Form::staticMetaObject.className());
    auto* pStandIn = new Form;
    if (pLoaded)
        pLoaded->setParent(pStandIn);
    return pStandIn;
}

} // namespace

VTForms::VTForms(VTUiLoaderInterface* pUiLoader)
    : pMain(Load<QWidget>(pUiLoader, VTIds::Client))
    , pSetArgument(Load<QWidget>(pUiLoader, VTIds::SetArgument))
    , pSetParent(Load<QWidget>(pUiLoader, VTIds::SetParent))
    , pSearch(Load<QWidget>(pUiLoader, VTIds::Search))
    , pInput(Load<QDialog>(pUiLoader, VTIds::InputDialog))
{
}

VTForms::~VTForms()
{
    Hide();
    const QVector<QWidget*> lstOwned = Owned();
    for (QWidget* pForm : lstOwned)
        pForm->deleteLater();
}

void VTForms::Hide() const
{
    for (const QPointer<QWidget>& pForm :
        {pMain, pSetArgument, pSetParent, pSearch, QPointer<QWidget>(pInput.data())}) {
        if (pForm)
            pForm->hide();
    }
}

QVector<QWidget*> VTForms::Owned() const
{
    QVector<QWidget*> lstOwned {pMain, pSetArgument, pSetParent, pSearch, pInput};
    lstOwned.erase(std::remove_if(lstOwned.begin(), lstOwned.end(),
                       [](const QWidget* pForm) { return !pForm || pForm->parent(); }),
        lstOwned.end());
    return lstOwned;
}
