#pragma once

#include "common/vtr_prompts.h"
#include "mainwindow/vtr_accountpanel.h"
#include "mainwindow/vtr_accountsettings.h"
#include "mainwindow/vtr_chrome.h"
#include "mainwindow/vtr_contextmenus.h"
#include "mainwindow/vtr_downloadlist.h"
#include "mainwindow/vtr_forms.h"
#include "mainwindow/vtr_jobactions.h"
#include "mainwindow/vtr_joblist.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagebar.h"
#include "mainwindow/vtr_requests.h"
#include "mainwindow/vtr_session.h"
#include "mainwindow/vtr_signin.h"
#include "mainwindow/vtr_submitlist.h"
#include "mainwindow/vtr_tables.h"
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
struct VTServices;
struct VTTimers;

/// A dialog controller, which is scheduled for deletion, not deleted, when its owner goes.
template <typename Controller>
using VTController = QScopedPointer<Controller, QScopedPointerDeleteLater>;

/// The built window: forms, dialog controllers and the concerns that share them, each after those it needs.
struct VTConcerns
{
    /// @param pWindow parent of tray icon and menus; all must outlive this object.
    VTConcerns(
        QWidget* pWindow, const VTServices& services, const VTCodeTables& codeTables, const VTTimers& timers);
    ~VTConcerns();

    /// Restyles what lies outside the main form: dialogs and tray icon.
    void ChangeSkin(const QString& strSkin) const;
    void ChangeLanguage();

    /// Everything that is only scheduled for deletion when this object goes.
    QVector<QPointer<QObject>> Remains() const;

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
    VTAccountPanel account;
    VTChrome chrome;
    VTTray tray;
    VTContextMenus menus;
    VTJobList jobList;
    VTSubmitList submitList;
    VTDownloadList downloadList;
    VTJobActions jobActions;
    VTToolbar toolbar;
    VTTaskQuestions uploadRetries;
    VTTaskQuestions lackedTextures;
    VTSignIn signIn;
};
