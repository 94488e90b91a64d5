#include "mainwindow/vtr_concerns.h"

#include "common/vtr_codetables.h"
#include "dialogs/vtr_group.h"
#include "dialogs/vtr_search.h"
#include "dialogs/vtr_setargument.h"
#include "dialogs/vtr_setparent.h"
#include "mainwindow/vtr_timers.h"

#include <QDialog>

VTConcerns::VTConcerns(
    QWidget* pWindow, const VTServices& attached, const VTCodeTables& codeTables, const VTTimers& timers)
    : services(attached)
    , forms(services.pUiLoader)
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
    , pageKeys(form)
    , accountPanel({pWindow, form, requests, timers})
    , chrome(pWindow, form, services, prompts)
    , tray(pWindow, form, services, session)
    , menus(pWindow, form, settings, tables)
    , jobList({form, services, session, settings, codeTables, requests, prompts, tables, pageBar})
    , submitList({form, services, session, codeTables, timers, prompts, tables, pageBar})
    , downloadList({form, services, codeTables, timers, tables, pageBar})
    , appearance({pWindow, form, services, tray, menus, jobList, submitList, downloadList, *pSetArgument,
          *pSetParent, *pSearch, *pGroup})
    , jobActions({form, services, session, requests, tables, prompts, jobList, submitList, downloadList})
    , toolbar(form)
    , tabs({form, services, session, timers, tables, toolbar, *pGroup, menus, pageBar, jobList, submitList,
          downloadList})
    , uploadRetries(VTTaskQuestions::Subject::FailedUploads, services, session, prompts, timers.pUploadRetry)
    , lackedTextures(
          VTTaskQuestions::Subject::MissingTextures, services, session, prompts, timers.pLackTexture)
    , signIn({form, services, timers, requests, session, settings, accountPanel, pageBar, jobList, menus,
          tray, uploadRetries, lackedTextures, *pSearch, *pSetParent, *pSetArgument, *pGroup})
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

VTConcerns::~VTConcerns() = default;

void VTConcerns::ReleaseServices()
{
    settings.Disconnect();
    services = VTServices();
}

void VTConcerns::Retire()
{
    ReleaseServices();
    session.End();
    // The controllers outlive this object for a moment and must not use it then.
    pSetArgument->Retire();
    pSetParent->Retire();
    pGroup->Retire();
    menus.Close();
    tray.Hide();
    forms.Hide();
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
