#include "common/vtr_services.h"

namespace {

// The logger's levels as the client uses them.
constexpr int LevelCritical = 8;
constexpr int LevelDebug = 128;

void Write(VTLoggerInterface* pLogger, const QString& strMessage, int nLevel)
{
    if (pLogger)
        pLogger->Write(strMessage, nLevel, QStringLiteral("default"), QString(), -1);
}

} // namespace

bool VTServices::SameServices(const VTServices& other) const
{
    return pSettings == other.pSettings && pLoggerObject == other.pLoggerObject
        && pUiLoader == other.pUiLoader && pMessageBox == other.pMessageBox
        && pCommunication == other.pCommunication && pRenderCore == other.pRenderCore
        && pConfiguration == other.pConfiguration && pPreviewer == other.pPreviewer;
}

QString VTServices::Skin() const
{
    return pUiLoader ? pUiLoader->GetSkin() : QString();
}

void VTServices::LogDebug(const QString& strMessage) const
{
    Write(Logger(), strMessage, LevelDebug);
}

void VTServices::LogCritical(const QString& strMessage) const
{
    Write(Logger(), strMessage, LevelCritical);
}
