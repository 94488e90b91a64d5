#include "mainwindow/vtr_concerns.h"

#include "common/vtr_codetables.h"
#include "common/vtr_services.h"
#include "dialogs/vtr_group.h"
#include "dialogs/vtr_search.h"
#include "dialogs/vtr_setargument.h"
#include "dialogs/vtr_setparent.h"
#include "mainwindow/vtr_captions.h"
#include "mainwindow/vtr_timers.h"

#include <QDialog>

namespace {

/// Texts of the questions about local tasks.
class TaskQuestionTexts
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    static VTQuestion UploadRetry(const QString& strTaskName, const QString& strFiles)
    {
        return {strTaskName, tr("Retry uploading?Failed to upload files:"), strFiles, tr("Cancel"), tr("Ok"),
            true};
    }

    static VTQuestion LackedTexture(const QString& strTaskName, const QString& strFiles)
    {
        const QString strDetail = tr("Continue next step?\nBelow files are missing:\n%1").arg(strFiles);
        return {strTaskName, QString(), strDetail, tr("Cancel"), tr("Ok"), false};
    }
};

} // namespace

VTConcerns::VTConcerns(
    QWidget* pWindow, const VTServices& services, const VTCodeTables& codeTables, const VTTimers& timers)
    : forms(services.pUiLoader)
    , form(forms.pMain)
    , pGroup(new VTGroup(forms.pMain, form.wgtGroup, forms.pInput))
    , pSetParent(new VTSetParent(
          forms.pSetParent, form.twtMyRender, codeTables.mapProgressStyle, codeTables.mapJobStatus))
    , pSetArgument(new VTSetArgument(forms.pSetArgument, form.twtLocalTask))
    , pSearch(new VTSearch(forms.pSearch))
    , prompts(services)
    , requests(services, session)
    , settings(services, session)
    , tables(form)
    , pageBar(form, services)
    , account(form, requests, session)
    , chrome(form, services, prompts)
    , tray(pWindow, form, services, session)
    , menus(pWindow, form, tables)
    , jobList({form, services, codeTables, requests, prompts, tables, pageBar})
    , submitList({form, services, codeTables, timers, prompts, pageBar})
    , downloadList({form, services, codeTables, timers, pageBar})
    , jobActions({form, services, session, requests, tables, prompts, jobList, submitList, downloadList})
    , toolbar({form, services, timers, tables, *pGroup, pageBar, jobList, submitList, downloadList})
    , uploadRetries(services, prompts, timers.pUploadRetry, TaskQuestionTexts::UploadRetry,
          &VTRenderCoreInterface::UploadRetryAnswer)
    , lackedTextures(services, prompts, timers.pLackTexture, TaskQuestionTexts::LackedTexture,
          &VTRenderCoreInterface::LackTextureAnswer)
    , signIn(
          {form, services, timers, requests, session, account, pageBar, jobList, tray, *pSearch, *pSetParent})
{
    pSetArgument->SetServices(services);
    pSetParent->SetServices(services);
    pGroup->SetServices(services);
    pSetArgument->InitWidgets();
    pSetParent->InitWidgets();
    pSearch->InitWidgets();
    pSearch->Update();
    pGroup->InitWidgets();

    tables.SetUpColumns();
    form.pForm->setAcceptDrops(true);
    form.pForm->setMouseTracking(true);
}

VTConcerns::~VTConcerns()
{
    // The controllers outlive this object by a moment, the services that they know do not.
    pSetArgument->Retire();
    pSetParent->Retire();
    pGroup->Retire();
}

void VTConcerns::ChangeSkin(const QString& strSkin) const
{
    pSetArgument->ChangeSkin(strSkin);
    pSetParent->ChangeSkin(strSkin);
    pSearch->ChangeSkin(strSkin);
    pGroup->ChangeSkin(strSkin);
    tray.ApplySkin(strSkin);
}

void VTConcerns::ChangeLanguage()
{
    chrome.UpdateLanguage();
    VTCaptions::Retranslate(form);
    tray.Retranslate();
    menus.Retranslate();
    pSetArgument->ChangeLanguage();
    pSetParent->ChangeLanguage();
    pSearch->ChangeLanguage();
    pGroup->ChangeLanguage();
}

QVector<QPointer<QObject>> VTConcerns::Remains() const
{
    // Controllers before the forms that they look after.
    QVector<QPointer<QObject>> lstRemnant {
        pSetArgument.data(), pSetParent.data(), pSearch.data(), pGroup.data()};
    for (QWidget* pForm : forms.Owned())
        lstRemnant.append(pForm);
    return lstRemnant;
}
