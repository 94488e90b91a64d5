#include "mainwindow/vtr_accountpanel.h"

#include "common/vtr_plaintext.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_requests.h"
#include "mainwindow/vtr_session.h"
#include "vtr_communicationinterface.h"

#include <limits>

namespace {

/// An unbound account's balance: the whole part's low 8 bits as one Latin-1 character.
QString BalanceCharacter(double dBalance)
{
    constexpr double Limit = std::numeric_limits<int>::max();
    const int nWhole = dBalance > -Limit && dBalance < Limit ? int(dBalance) : 0;
    return QString(QChar(ushort(nWhole & 0xff)));
}

} // namespace

VTAccountPanel::VTAccountPanel(const VTMainForm& form, const VTRequests& requests, VTSession& session)
    : m_form(form)
    , m_requests(requests)
    , m_session(session)
{
}

void VTAccountPanel::TakeNames(const QVariantMap& mapAnswer)
{
    m_session.strLoginName = mapAnswer.value(VTProtocol::LoginName).toString();
    m_session.strUserName = mapAnswer.value(VTProtocol::UserName).toString();
    VTSetPlainText(m_form.lblUserName, m_session.strLoginName);
}

void VTAccountPanel::TakeToken(const QVariantMap& mapAnswer)
{
    m_session.strToken = VTProtocol::Payload(mapAnswer).value(VTProtocol::Token).toString();
}

void VTAccountPanel::RequestUserInfo() const
{
    m_requests.Send(&VTCommunicationInterface::GetUserInfo);
}

void VTAccountPanel::HandleUserInfoAnswer(int nRet, const QVariantMap& mapAnswer)
{
    if (nRet != VTProtocol::Success)
        return;
    const QVariantMap mapData = VTProtocol::Payload(mapAnswer);
    const QVariantMap mapUser = mapData.value(QStringLiteral("userInfo")).toMap();
    if (!mapData.value(QStringLiteral("isBindToVso")).toBool()) {
        ShowBalances(
            BalanceCharacter(mapUser.value(QStringLiteral("user_balance")).toDouble()), QString(), false);
        return;
    }
    ShowBalances(mapUser.value(QStringLiteral("user_rmb_balance")).toString(),
        mapUser.value(QStringLiteral("user_vso_balance")).toString(), true);
    VTSetPlainText(m_form.lblUserName, mapUser.value(VTProtocol::UserName).toString());
}

void VTAccountPanel::ShowBalances(const QString& strMain, const QString& strCredits, bool bBound)
{
    if (bBound)
        VTSetPlainText(m_form.lblCyb, strCredits, true);
    m_form.lblCybU->setVisible(bBound);
    m_form.lblCyb->setVisible(bBound);
    VTSetPlainText(m_form.lblRmb, strMain, true);
}
