#include "common/vtr_services.h"

#include <tuple>

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
    const auto Services = [](const VTServices& services) {
        return std::make_tuple(services.pSettings.data(), services.pLoggerObject.data(),
            services.pUiLoader.data(), services.pMessageBox.data(), services.pCommunication.data(),
            services.pRenderCore.data(), services.pConfiguration.data(), services.pPreviewer.data());
    };
    return Services(*this) == Services(other);
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
