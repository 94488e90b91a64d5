#include "common/vtr_protocol.h"

namespace VTProtocol {

QVariantHash SessionRequest(const QString& strUserName, const QString& strToken)
{
    return {{UserName, strUserName}, {Token, strToken}};
}

void AddJobIds(QVariantHash& mapRequest, const QStringList& lstJobId)
{
    for (int i = 0; i < lstJobId.size(); ++i)
        mapRequest.insert(QStringLiteral("id[%1]").arg(i), lstJobId.at(i));
}

QVariantMap Payload(const QVariantMap& mapAnswer)
{
    return mapAnswer.value(Data).toMap();
}

} // namespace VTProtocol
