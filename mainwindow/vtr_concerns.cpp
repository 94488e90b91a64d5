#include "mainwindow/vtr_concerns.h"

#include "common/vtr_codetables.h"
#include "common/vtr_services.h"
#include "dialogs/vtr_group.h"
#include "dialogs/vtr_search.h"
#include "dialogs/vtr_setargument.h"
#include "dialogs/vtr_setparent.h"
#include "mainwindow/vtr_timers.h"

#include <QDialog>

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
    , settings(pWindow, services, session)
    , tables(form)
    , pageBar(form, services)
    , accountPanel({pWindow, form, requests, timers})
    , chrome(pWindow, form, services, prompts)
    , tray(pWindow, form, services, session)
    , menus(pWindow, form, settings, tables)
    , appearance({pWindow, form, services, tray, menus, *pSetArgument, *pSetParent, *pSearch, *pGroup})
    , jobList({form, services, settings, codeTables, requests, prompts, tables, pageBar})
    , submitList({form, services, codeTables, timers, prompts, pageBar})
    , downloadList({form, services, codeTables, timers, pageBar})
    , jobActions({form, services, session, requests, tables, prompts, jobList, submitList, downloadList})
    , toolbar(form)
    , tabs({form, services, timers, tables, toolbar, *pGroup, pageBar, jobList, submitList, downloadList})
    , uploadRetries(VTTaskQuestions::Subject::FailedUploads, services, prompts, timers.pUploadRetry)
    , lackedTextures(VTTaskQuestions::Subject::MissingTextures, services, prompts, timers.pLackTexture)
    , signIn({form, services, timers, requests, session, settings, accountPanel, pageBar, jobList, tray,
          *pSearch, *pSetParent})
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
    // The controllers are deleted shortly after this object, when the services may be gone already.
    pSetArgument->Retire();
    pSetParent->Retire();
    pGroup->Retire();
}

QVector<QPointer<QObject>> VTConcerns::DeferredDeletions() const
{
    // The caller deletes them in this order: controllers before their forms.
    QVector<QPointer<QObject>> lstObject {
        pSetArgument.data(), pSetParent.data(), pSearch.data(), pGroup.data()};
    const QVector<QWidget*> lstForm = forms.Owned();
    for (QWidget* pForm : lstForm)
        lstObject.append(pForm);
    return lstObject;
}
