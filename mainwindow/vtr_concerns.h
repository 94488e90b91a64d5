#pragma once

#include "common/vtr_prompts.h"
#include "common/vtr_services.h"
#include "mainwindow/vtr_accountpanel.h"
#include "mainwindow/vtr_accountsettings.h"
#include "mainwindow/vtr_appearance.h"
#include "mainwindow/vtr_chrome.h"
#include "mainwindow/vtr_contextmenus.h"
#include "mainwindow/vtr_downloadlist.h"
#include "mainwindow/vtr_forms.h"
#include "mainwindow/vtr_jobactions.h"
#include "mainwindow/vtr_joblist.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagebar.h"
#include "mainwindow/vtr_pagekeys.h"
#include "mainwindow/vtr_requests.h"
#include "mainwindow/vtr_session.h"
#include "mainwindow/vtr_signin.h"
#include "mainwindow/vtr_submitlist.h"
#include "mainwindow/vtr_tables.h"
#include "mainwindow/vtr_tabs.h"
#include "mainwindow/vtr_taskquestions.h"
#include "mainwindow/vtr_toolbar.h"
#include "mainwindow/vtr_tray.h"

#include <QScopedPointer>
#include <QVector>

class VTGroup;
class VTSearch;
class VTSetArgument;
class VTSetParent;
struct VTCodeTables;
struct VTTimers;

/// Owns a dialog controller and schedules it for deletion when it goes out of scope.
template <typename Controller>
using VTController = QScopedPointer<Controller, QScopedPointerDeleteLater>;

/// The built window: forms, dialog controllers and concerns, each declared after what it depends on.
struct VTConcerns
{
    /// @param pWindow parent of tray icon and menus; all but `attached` must outlive this object.
    VTConcerns(
        QWidget* pWindow, const VTServices& attached, const VTCodeTables& codeTables, const VTTimers& timers);
    ~VTConcerns();

    /// Disconnects the services from each other, as far as the window has connected them, and forgets them.
    void ReleaseServices();

    /// Ends session and dialogs and releases the services, so that a call into these concerns that is still running has
    /// no further effect.
    void Retire();

    /// The dialog controllers and forms, which are not deleted with this object but left to the event loop.
    QVector<QPointer<QObject>> DeferredDeletions() const;

    VTServices services;
    VTSession session;
    VTForms forms;
    VTMainForm form;

    VTController<VTGroup> pGroup;
    VTController<VTSetParent> pSetParent;
    VTController<VTSetArgument> pSetArgument;
    VTController<VTSearch> pSearch;

    VTPrompts prompts;
    VTRequests requests;
    VTAccountSettings settings;
    VTTables tables;
    VTPageBar pageBar;
    VTPageKeys pageKeys;
    VTAccountPanel accountPanel;
    VTChrome chrome;
    VTTray tray;
    VTContextMenus menus;
    VTJobList jobList;
    VTSubmitList submitList;
    VTDownloadList downloadList;
    VTAppearance appearance;
    VTJobActions jobActions;
    VTToolbar toolbar;
    VTTabs tabs;
    VTTaskQuestions uploadRetries;
    VTTaskQuestions lackedTextures;
    VTSignIn signIn;
};
