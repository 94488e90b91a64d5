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
    m_pParts.reset();
}

void VTQsClientPrivate::BuildInterface()
{
    if (m_pParts && m_builtFor.SameServices(m_siblings))
        return;
    DropParts();
    m_pParts = std::make_unique<VTWindowParts>(this, m_siblings, m_codeTables, m_timers);
    ConnectConcerns();
    VTWireWindow(this, *m_pParts, m_siblings, m_timers);
    VTAllowFileDrops(this, m_siblings);

    ChangeSkin(m_siblings.Skin());
    ChangeLanguage(QString());
    m_builtFor = m_siblings;
}

void VTQsClientPrivate::DropParts()
{
    disconnect(m_formDestroyed);
    m_builtFor = VTSiblings();
    m_lstOldRemains = Remains();
    m_timers.StopAll();
    m_pParts.reset();
}

void VTQsClientPrivate::ConnectConcerns()
{
    // Without its form the window is as if never built.
    m_formDestroyed = connect(m_pParts->form.pForm, &QObject::destroyed, this, &VTQsClientPrivate::DropParts);

    connect(&m_pParts->jobList, &VTJobList::OrdersReady, this, &VTQsClientPrivate::JobIdType);
    connect(&m_pParts->jobList, &VTJobList::CandidatesArrived, this, &VTQsClientPrivate::showParenList);
    connect(&m_pParts->signIn, &VTSignIn::SignedIn, this, &VTQsClientPrivate::login);
    connect(&m_pParts->signIn, &VTSignIn::UserKnown, this, &VTQsClientPrivate::UpdateSettings);
    connect(&m_pParts->signIn, &VTSignIn::UserInfoTimerStarted, this, [this] {
        // Made again at every sign-in, so that after a second one each timeout asks twice.
        connect(m_timers.pUserInfo, SIGNAL(timeout()), this, SLOT(GetUserInfo()));
    });
}

void VTQsClientPrivate::ShowForm()
{
    if (m_pParts)
        m_pParts->chrome.ShowForm();
}

void VTQsClientPrivate::ShowTrayIcon()
{
    if (m_pParts)
        m_pParts->tray.Show();
}

void VTQsClientPrivate::CacheSubmitTasks()
{
    if (m_siblings.pRenderCore)
        m_lstSubmitTask = m_siblings.pRenderCore->GetSubmitTaskIds();
}

QVector<QPointer<QObject>> VTQsClientPrivate::Remains() const
{
    return m_pParts ? m_pParts->Remains() + m_lstOldRemains : m_lstOldRemains;
}

void VTQsClientPrivate::LoadGlobalSettings()
{
    m_codeTables.Load();
}

void VTQsClientPrivate::ChangeSkin(QString strSkin)
{
    if (!m_pParts)
        return;
    m_pParts->chrome.Restyle(strSkin);
    VTSkin::ApplyStyleSheet(this, strSkin, VTIds::Menu);
    m_pParts->ChangeSkin(strSkin);
}

void VTQsClientPrivate::ChangeLanguage(QString /*strLanguage*/)
{
    // What the loader says now counts, not what it announced.
    if (m_pParts)
        m_pParts->ChangeLanguage();
}

void VTQsClientPrivate::ShowWindow(QString strKey)
{
    if (!m_pParts || strKey != VTIds::Client)
        return;
    m_pParts->form.pForm->show();
    m_pParts->form.pForm->activateWindow();
}

void VTQsClientPrivate::ShowWindowMaximized()
{
    if (!m_pParts)
        return;
    m_pParts->chrome.Maximize();
    AnnounceNewSize();
}

void VTQsClientPrivate::ShowWindowNormal()
{
    if (!m_pParts)
        return;
    m_pParts->chrome.Restore();
    AnnounceNewSize();
}

void VTQsClientPrivate::AnnounceNewSize()
{
    QTimer::singleShot(NewSizeDelay, this, SIGNAL(windowSizeChanged()));
}

bool VTQsClientPrivate::eventFilter(QObject* obj, QEvent* event)
{
    // The skin's layout file decides where the form's children go, so the form itself never sees its resizing.
    if (m_pParts && obj == m_pParts->form.pForm && event->type() == QEvent::Resize) {
        m_pParts->chrome.LayoutForm();
        return true;
    }
    return QWidget::eventFilter(obj, event);
}

void VTQsClientPrivate::PageButtonClicked()
{
    const auto* pButton = qobject_cast<QPushButton*>(sender());
    if (!m_pParts || !pButton)
        return;
    const int nTab = m_pParts->form.tbwContainer->currentIndex();
    if (!m_pParts->form.Table(nTab) || !m_pParts->pageBar.Click(pButton, nTab))
        return;
    // The bar of the farm's jobs is redrawn when the answer arrives.
    if (nTab != VTList::Jobs)
        m_pParts->pageBar.Redraw(nTab);
    m_pParts->toolbar.ShowPage(nTab);
}

void VTQsClientPrivate::RefreshJobList()
{
    if (m_pParts && m_pParts->form.tbwContainer->currentIndex() == VTList::Jobs)
        m_pParts->jobList.RequestCurrentPage();
}

void VTQsClientPrivate::UpdateSettings()
{
    if (!m_pParts)
        return;
    m_pParts->settings.Load(this);
    m_pParts->jobList.SetAutoDownload(m_pParts->settings.AutoDownload());
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
