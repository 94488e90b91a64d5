#include "vtr_forms.h"

#include "vtr_ids.h"
#include "vtr_uiloaderinterface.h"

#include <QDialog>
#include <QtDebug>

#include <memory>

namespace {

template <typename Form>
Form* Load(VTUiLoaderInterface* pUiLoader, const QString& strKey)
{
    std::unique_ptr<QWidget> pLoaded(pUiLoader ? pUiLoader->LoadUi(strKey, nullptr) : nullptr);
    if (auto* pForm = qobject_cast<Form*>(pLoaded.get())) {
        pLoaded.release(); // NOLINT(bugprone-unused-return-value)
        return pForm;
    }
    qCritical("Form %s is missing or no %s", qUtf8Printable(strKey), Form::staticMetaObject.className());
    return new Form;
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
    for (QWidget* pForm : {pMain.data(), pSetArgument.data(), pSetParent.data(), pSearch.data(),
             static_cast<QWidget*>(pInput.data())}) {
        if (!pForm)
            continue;
        pForm->hide();
        pForm->deleteLater();
    }
}
