#include "mainwindow/vtr_appearance.h"

#include "common/vtr_ids.h"
#include "common/vtr_services.h"
#include "common/vtr_skin.h"
#include "dialogs/vtr_group.h"
#include "dialogs/vtr_search.h"
#include "dialogs/vtr_setargument.h"
#include "dialogs/vtr_setparent.h"
#include "mainwindow/vtr_captions.h"
#include "mainwindow/vtr_contextmenus.h"
#include "mainwindow/vtr_downloadlist.h"
#include "mainwindow/vtr_joblist.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_submitlist.h"
#include "mainwindow/vtr_tray.h"

#include <QFileInfo>

namespace {

/// Style sheet of the language button; %1 is the name of the language's image.
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

VTAppearance::VTAppearance(const Dependencies& dependencies)
    : m_deps(dependencies)
{
}

void VTAppearance::ChangeSkin(const QString& strSkin) const
{
    VTSkin::ApplyToForm(m_deps.form.pForm, strSkin, VTIds::Client);
    m_deps.form.pForm->setWindowIcon(VTSkin::MainIcon(strSkin));
    if (m_deps.services.pUiLoader)
        m_deps.services.pUiLoader->LoadSkinSettings(VTSkin::LayoutFile(strSkin, VTIds::Client));
    VTSkin::ApplyStyleSheet(m_deps.pWindow, strSkin, VTIds::Menu);
    m_deps.setArgument.ChangeSkin(strSkin);
    m_deps.setParent.ChangeSkin(strSkin);
    m_deps.search.ChangeSkin(strSkin);
    m_deps.group.ChangeSkin(strSkin);
    m_deps.tray.ApplySkin(strSkin);
}

void VTAppearance::ChangeLanguage()
{
    m_strLanguage = m_deps.services.pUiLoader ? m_deps.services.pUiLoader->GetLanguage() : QString();
    RestyleLanguageButton();
    VTCaptions::Retranslate(m_deps.form);
    m_deps.tray.Retranslate();
    m_deps.menus.Retranslate();
    m_deps.jobList.Retranslate();
    m_deps.submitList.Retranslate();
    m_deps.downloadList.Retranslate();
    m_deps.setArgument.ChangeLanguage();
    m_deps.setParent.ChangeLanguage();
    m_deps.search.ChangeLanguage();
    m_deps.group.ChangeLanguage();
}

void VTAppearance::RestyleLanguageButton() const
{
    const QString strImage = QFileInfo(m_strLanguage).completeBaseName().mid(LanguagePrefixLength);
    const QString strSheet = LanguageButtonSheet().arg(strImage);
    if (m_deps.form.btnLang->styleSheet() != strSheet)
        m_deps.form.btnLang->setStyleSheet(strSheet);
}

void VTAppearance::ToggleLanguage() const
{
    if (!m_deps.services.pUiLoader)
        return;
    const QString strCurrent = QFileInfo(m_strLanguage).fileName();
    const QStringList lstLanguage = m_deps.services.pUiLoader->GetLanguages();
    for (const QString& strLanguage : lstLanguage) {
        if (QFileInfo(strLanguage).fileName() == strCurrent)
            continue;
        m_deps.services.pUiLoader->SetLanguage(strLanguage);
        return;
    }
}
