#include "mainwindow/vtr_accountpanel.h"

#include "common/vtr_plaintext.h"
#include "common/vtr_protocol.h"
#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_requests.h"
#include "mainwindow/vtr_timers.h"
#include "vtr_communicationinterface.h"

#include <cmath>
#include <limits>

namespace {

/// The balance of an unbound account as one Latin-1 character: the low 8 bits of its integral part.
QString BalanceCharacter(double dBalance)
{
    constexpr double Limit = std::numeric_limits<int>::max();
    const int nWhole = std::abs(dBalance) < Limit ? int(dBalance) : 0;
    return QString(QChar(ushort(nWhole & 0xff)));
}

} // namespace

VTAccountPanel::VTAccountPanel(const Dependencies& dependencies)
    : m_deps(dependencies)
{
}

void VTAccountPanel::ShowUser(const QString& strName) const
{
    VTSetPlainText(m_deps.form.lblUserName, strName);
}

void VTAccountPanel::StartPolling() const
{
    m_deps.timers.pUserInfo->start(VTTimers::UserInfoInterval);
    // contract: connected again at every sign-in, so that after the second one each timeout sends two requests
    QObject::connect(m_deps.timers.pUserInfo, SIGNAL(timeout()), m_deps.pWindow, SLOT(GetUserInfo()));
}

void VTAccountPanel::StopPolling() const
{
    m_deps.timers.pUserInfo->stop();
}

void VTAccountPanel::RequestUserInfo() const
{
    m_deps.requests.Send(&VTCommunicationInterface::GetUserInfo, m_deps.requests.New());
}

void VTAccountPanel::HandleUserInfoAnswer(int nRet, const QVariantMap& mapAnswer) const
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
    ShowUser(mapUser.value(VTProtocol::UserName).toString());
}

void VTAccountPanel::ShowBalances(const QString& strMain, const QString& strCredits, bool bBound) const
{
    const VTMainForm& form = m_deps.form;
    if (bBound)
        VTSetPlainText(form.lblCyb, strCredits, true);
    form.lblCybU->setVisible(bBound);
    form.lblCyb->setVisible(bBound);
    VTSetPlainText(form.lblRmb, strMain, true);
}
