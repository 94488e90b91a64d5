#include "common/vtr_prompts.h"

#include "common/vtr_services.h"
#include "common/vtr_skin.h"

namespace {

const QString& FirstButton()
{
    static const QString strName = QStringLiteral("btnMessageBox_1");
    return strName;
}

const QString& SecondButton()
{
    static const QString strName = QStringLiteral("btnMessageBox_2");
    return strName;
}

} // namespace

void VTPrompts::Notify(const QString& strText) const
{
    Show(VTMessagboxInterface::Notice, tr("QuillStar Client"), QString(), strText,
        {{FirstButton(), tr("Ok")}}, true);
}

VTAnswer VTPrompts::Ask(const VTQuestion& question) const
{
    const QString strButton
        = Show(VTMessagboxInterface::Question, question.strTitle, question.strText, question.strDetail,
            {{FirstButton(), question.strRefusal}, {SecondButton(), question.strConsent}}, question.bFlag);
    if (strButton == SecondButton())
        return VTAnswer::Agreed;
    return strButton == FirstButton() ? VTAnswer::Refused : VTAnswer::None;
}

VTAnswer VTPrompts::AskToConfirm(const QString& strQuestion) const
{
    return Ask({tr("QuillStar Client"), QString(), strQuestion, tr("Cancel"), tr("Ok"), false});
}

QString VTPrompts::Show(int nKind, const QString& strTitle, const QString& strText, const QString& strDetail,
    const QVariantHash& mapButtons, bool bFlag) const
{
    const QIcon icon = VTSkin::MainIcon(m_services.Skin()); // asks a service, during which others may go away
    if (!m_services.pMessageBox)
        return QString();
    return m_services.pMessageBox->ShowMessage(nKind, strTitle, strText, icon, strDetail, mapButtons, bFlag);
}
