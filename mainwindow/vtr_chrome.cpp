#include "mainwindow/vtr_chrome.h"

#include "common/vtr_ids.h"
#include "common/vtr_prompts.h"
#include "common/vtr_services.h"
#include "common/vtr_skin.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_tables.h"

#include <QFileInfo>
#include <QPointer>
#include <QScreen>

namespace {

/// Sheet of the language button; %1 is the name of the language's image.
const QString& LanguageButtonSheet()
{
    static const QString strSheet
        = QStringLiteral("QPushButton{border-image: url(:/default/%1_normal.png);}"
                         "QPushButton:hover{border-image: url(:/default/%1_hover.png);}"
                         "QPushButton:pressed{border-image: url(:/default/%1_pressed.png);}");
    return strSheet;
}

/// Language files are named "vtr_<language>.qm".
constexpr int LanguagePrefixLength = 4;

} // namespace

VTChrome::VTChrome(const VTMainForm& form, const VTServices& services, const VTPrompts& prompts)
    : m_form(form)
    , m_services(services)
    , m_prompts(prompts)
{
}

void VTChrome::ShowForm() const
{
    m_form.pForm->setWindowIcon(VTSkin::MainIcon(m_services.Skin()));
    m_form.pForm->show();
}

void VTChrome::Restyle(const QString& strSkin) const
{
    VTSkin::ApplyToForm(m_form.pForm, strSkin, VTIds::Client);
    if (m_services.pUiLoader)
        m_services.pUiLoader->LoadSkinSettings(VTSkin::LayoutFile(strSkin, VTIds::Client));
}

void VTChrome::Maximize()
{
    m_form.btnSystemMaxmax->show();
    m_form.btnSystemMaxnormal->hide();
    m_sizeDelta = m_form.pForm->screen()->availableSize() - m_form.pForm->size();
    m_form.tbwContainer->setFixedSize(m_form.tbwContainer->size() + m_sizeDelta);
    m_form.pForm->showMaximized();
}

void VTChrome::Restore()
{
    m_form.btnSystemMaxmax->hide();
    m_form.btnSystemMaxnormal->show();
    m_form.tbwContainer->setFixedSize(m_form.tbwContainer->size() - m_sizeDelta);
    m_form.pForm->showNormal();
}

void VTChrome::LayoutForm() const
{
    if (m_services.pUiLoader)
        m_services.pUiLoader->LayoutForm(m_form.pForm, VTSkin::LayoutFile(m_services.Skin(), VTIds::Client));
}

void VTChrome::AskToQuit()
{
    const QPointer<VTChrome> pThis(this);
    if (m_prompts.AskToConfirm(tr("Are you sure to quit?")) != VTAnswer::Agreed || !pThis)
        return;
    if (m_services.pRenderCore)
        m_services.pRenderCore->RemoveSubmitTasks(VTTables::AllIds(m_form.twtLocalTask), false);
    if (pThis)
        m_form.pForm->hide();
    QCoreApplication::exit(0);
}

void VTChrome::UpdateLanguage()
{
    m_strLanguage = m_services.pUiLoader ? m_services.pUiLoader->GetLanguage() : QString();
    const QString strImage = QFileInfo(m_strLanguage).completeBaseName().mid(LanguagePrefixLength);
    const QString strSheet = LanguageButtonSheet().arg(strImage);
    if (m_form.btnLang->styleSheet() != strSheet)
        m_form.btnLang->setStyleSheet(strSheet);
}

void VTChrome::ToggleLanguage() const
{
    if (!m_services.pUiLoader)
        return;
    const QString strCurrent = QFileInfo(m_strLanguage).fileName();
    const QStringList lstLanguage = m_services.pUiLoader->GetLanguages();
    for (const QString& strLanguage : lstLanguage) {
        if (QFileInfo(strLanguage).fileName() == strCurrent)
            continue;
        m_services.pUiLoader->SetLanguage(strLanguage);
        return;
    }
}
