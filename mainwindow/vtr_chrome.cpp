#include "mainwindow/vtr_chrome.h"

#include "common/vtr_ids.h"
#include "common/vtr_prompts.h"
#include "common/vtr_services.h"
#include "common/vtr_showform.h"
#include "common/vtr_skin.h"
#include "common/vtr_tablerows.h"
#include "mainwindow/vtr_mainform.h"

#include <QEvent>
#include <QPointer>
#include <QScreen>
#include <QTimer>

namespace {

/// By then a maximised or restored form certainly has its new size.
constexpr int NewSizeDelay = 100; // ms

} // namespace

VTChrome::VTChrome(
    QWidget* pWindow, const VTMainForm& form, const VTServices& services, const VTPrompts& prompts)
    : m_pWindow(pWindow)
    , m_form(form)
    , m_services(services)
    , m_prompts(prompts)
{
}

void VTChrome::ShowForm() const
{
    m_form.pForm->setWindowIcon(VTSkin::MainIcon(m_services.Skin()));
    VTShowForm(m_form.pForm);
}

void VTChrome::ShowOnRequest(const QString& strKey) const
{
    if (strKey != VTIds::Client)
        return;
    if (VTShowForm(m_form.pForm))
        m_form.pForm->activateWindow();
}

void VTChrome::Maximize()
{
    m_form.btnSystemMaxmax->show();
    m_form.btnSystemMaxnormal->hide();
    m_sizeDelta = m_form.pForm->screen()->availableSize() - m_form.pForm->size();
    m_form.tbwContainer->setFixedSize(m_form.tbwContainer->size() + m_sizeDelta);
    AnnounceNewSize();
    m_form.pForm->showMaximized(); // last: its events may delete the form
}

void VTChrome::Restore()
{
    m_form.btnSystemMaxmax->hide();
    m_form.btnSystemMaxnormal->show();
    m_form.tbwContainer->setFixedSize(m_form.tbwContainer->size() - m_sizeDelta);
    AnnounceNewSize();
    m_form.pForm->showNormal(); // last, as above
}

void VTChrome::AnnounceNewSize() const
{
    QTimer::singleShot(NewSizeDelay, m_pWindow, SIGNAL(windowSizeChanged()));
}

bool VTChrome::HandleEvent(const QObject* pObject, const QEvent* pEvent) const
{
    if (pObject != m_form.pForm || pEvent->type() != QEvent::Resize)
        return false;
    // The skin's layout file places the form's children, so the form itself never sees the event.
    if (m_services.pUiLoader)
        m_services.pUiLoader->LayoutForm(m_form.pForm, VTSkin::LayoutFile(m_services.Skin(), VTIds::Client));
    return true;
}

void VTChrome::AskToQuit()
{
    const QPointer<QWidget> pForm(m_form.pForm);
    if (m_prompts.AskToConfirm(tr("Are you sure to quit?")) != VTAnswer::Agreed)
        return;
    if (pForm && m_services.pRenderCore)
        m_services.pRenderCore->RemoveSubmitTasks(VTTableRows::AllIds(m_form.twtLocalTask), false);
    if (pForm)
        pForm->hide();
    QCoreApplication::exit(0);
}
