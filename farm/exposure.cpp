#include "farm/exposure.h"

#include "farm/accounts/account_store.h"
#include "farm/demo_data.h"
#include "farm/farm_settings.h"
#include "farm/http/client_address.h"

#include <stdexcept>

namespace farm {

void CheckExposure(AccountStore& accounts, const FarmSettings& settings)
{
    if (IsLoopback(settings.address) && settings.proxies.isEmpty())
        return;
    if (settings.proxies.isEmpty())
        throw std::runtime_error("on " + settings.address.toStdString()
            + " passwords and pictures would cross the network unencrypted; listen on 127.0.0.1 behind a "
              "proxy that "
              "adds TLS, or name a proxy on another machine with --behind-proxy");
    if (settings.demo)
        throw std::runtime_error(
            "a farm behind a proxy has no demo accounts, whose passwords everybody knows; start "
            "it with --no-demo");
    QStringList open;
    const QStringList names = DemoAccounts();
    for (const QString& name : names) {
        if (accounts.IsPassword(name, name))
            open.append(name);
    }
    if (!open.isEmpty())
        throw std::runtime_error("everybody knows the passwords of the demo accounts "
            + open.join(QStringLiteral(", ")).toStdString()
            + "; disable each with \"account disable\" or change it with \"account password\" first");
}

} // namespace farm
