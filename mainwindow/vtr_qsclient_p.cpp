#include "mainwindow/vtr_qsclient_p.h"

#include "common/vtr_ids.h"
#include "common/vtr_skin.h"
#include "common/vtr_tablecells.h"
#include "dialogs/vtr_group.h"
#include "dialogs/vtr_search.h"
#include "dialogs/vtr_setargument.h"
#include "dialogs/vtr_setparent.h"
#include "mainwindow/vtr_concerns.h"
#include "mainwindow/vtr_dropfilter.h"
#include "mainwindow/vtr_wiring.h"

#include <QEvent>
#include <QGuiApplication>
#include <QTextCodec>

namespace {

/// A maximised or restored window has its new size only a moment later.
constexpr int NewSizeDelay = 100; // ms

} // namespace

VTQsClientPrivate::VTQsClientPrivate(QWidget* pParent)
    : QWidget(pParent)
    , m_timers(this)
{
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("utf-8"));
    setAcceptDrops(true);
}

VTQsClientPrivate::~VTQsClientPrivate()
{
    // While the parts go, their last events must find none.
    m_pConcerns.reset();
}

void VTQsClientPrivate::BuildInterface()
{
    if (m_pConcerns && m_builtFor.SameServices(m_services))
        return;
    DropConcerns();
    m_pConcerns = std::make_unique<VTConcerns>(this, m_services, m_codeTables, m_timers);
    ConnectConcerns();
    VTWireWindow(this, *m_pConcerns, m_services, m_timers);
    VTAllowFileDrops(this, m_services);

    ChangeSkin(m_services.Skin());
    ChangeLanguage(QString());
    m_builtFor = m_services;
}

void VTQsClientPrivate::DropConcerns()
{
    disconnect(m_formDestroyed);
    m_builtFor = VTServices();
    m_lstOldRemains = Remains();
    m_timers.StopAll();
    m_pConcerns.reset();
}

void VTQsClientPrivate::ConnectConcerns()
{
    // Without its form the window is as if never built.
    m_formDestroyed
        = connect(m_pConcerns->form.pForm, &QObject::destroyed, this, &VTQsClientPrivate::DropConcerns);

    connect(&m_pConcerns->jobList, &VTJobList::OrdersReady, this, &VTQsClientPrivate::JobIdType);
    connect(&m_pConcerns->jobList, &VTJobList::CandidatesArrived, this, &VTQsClientPrivate::showParenList);
    connect(&m_pConcerns->signIn, &VTSignIn::SignedIn, this, &VTQsClientPrivate::login);
    connect(&m_pConcerns->signIn, &VTSignIn::UserKnown, this, &VTQsClientPrivate::UpdateSettings);
    connect(&m_pConcerns->signIn, &VTSignIn::UserInfoTimerStarted, this, [this] {
        // Made again at every sign-in, so that after a second one each timeout asks twice.
        connect(m_timers.pUserInfo, SIGNAL(timeout()), this, SLOT(GetUserInfo()));
    });
}

void VTQsClientPrivate::ShowForm()
{
    if (m_pConcerns)
        m_pConcerns->chrome.ShowForm();
}

void VTQsClientPrivate::ShowTrayIcon()
{
    if (m_pConcerns)
        m_pConcerns->tray.Show();
}

void VTQsClientPrivate::CacheSubmitTasks()
{
    if (m_services.pRenderCore)
        m_lstSubmitTask = m_services.pRenderCore->GetSubmitTaskIds();
}

QVector<QPointer<QObject>> VTQsClientPrivate::Remains() const
{
    return m_pConcerns ? m_pConcerns->Remains() + m_lstOldRemains : m_lstOldRemains;
}

void VTQsClientPrivate::LoadGlobalSettings()
{
    m_codeTables.Load();
}

void VTQsClientPrivate::ChangeSkin(QString strSkin)
{
    if (!m_pConcerns)
        return;
    m_pConcerns->chrome.Restyle(strSkin);
    VTSkin::ApplyStyleSheet(this, strSkin, VTIds::Menu);
    m_pConcerns->ChangeSkin(strSkin);
}

void VTQsClientPrivate::ChangeLanguage(QString /*strLanguage*/)
{
    // What the loader says now counts, not what it announced.
    if (m_pConcerns)
        m_pConcerns->ChangeLanguage();
}

void VTQsClientPrivate::ShowWindow(QString strKey)
{
    if (!m_pConcerns || strKey != VTIds::Client)
        return;
    m_pConcerns->form.pForm->show();
    m_pConcerns->form.pForm->activateWindow();
}

void VTQsClientPrivate::ShowWindowMaximized()
{
    if (!m_pConcerns)
        return;
    m_pConcerns->chrome.Maximize();
    AnnounceNewSize();
}

void VTQsClientPrivate::ShowWindowNormal()
{
    if (!m_pConcerns)
        return;
    m_pConcerns->chrome.Restore();
    AnnounceNewSize();
}

void VTQsClientPrivate::AnnounceNewSize()
{
    QTimer::singleShot(NewSizeDelay, this, SIGNAL(windowSizeChanged()));
}

bool VTQsClientPrivate::eventFilter(QObject* obj, QEvent* event)
{
    // The skin's layout file decides where the form's children go, so the form itself never sees its resizing.
    if (m_pConcerns && obj == m_pConcerns->form.pForm && event->type() == QEvent::Resize) {
        m_pConcerns->chrome.LayoutForm();
        return true;
    }
    return QWidget::eventFilter(obj, event);
}

void VTQsClientPrivate::PageButtonClicked()
{
    const auto* pButton = qobject_cast<QPushButton*>(sender());
    if (!m_pConcerns || !pButton)
        return;
    const int nTab = m_pConcerns->form.tbwContainer->currentIndex();
    if (!m_pConcerns->form.Table(nTab) || !m_pConcerns->pageBar.Click(pButton, nTab))
        return;
    // The bar of the farm's jobs is redrawn when the answer arrives.
    if (nTab != VTList::Jobs)
        m_pConcerns->pageBar.Redraw(nTab);
    m_pConcerns->toolbar.ShowPage(nTab);
}

void VTQsClientPrivate::RefreshJobList()
{
    if (m_pConcerns && m_pConcerns->form.tbwContainer->currentIndex() == VTList::Jobs)
        m_pConcerns->jobList.RequestCurrentPage();
}

void VTQsClientPrivate::UpdateSettings()
{
    if (!m_pConcerns)
        return;
    m_pConcerns->settings.Load(this);
    m_pConcerns->jobList.SetAutoDownload(m_pConcerns->settings.AutoDownload());
}

void VTQsClientPrivate::SetItemAttribute(
    QTableWidgetItem* item, QVariant varData, QString strTip, bool bEnableChecked)
{
    if (item)
        VTTableCells::SetAttributes(item, varData, strTip, bEnableChecked);
}

QProgressBar* VTQsClientPrivate::GetANewProgressBar(int nPercent)
{
    return VTTableCells::NewProgressBar(nPercent, m_codeTables);
}
