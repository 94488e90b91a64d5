#include "host/farmclient/certificate_fault.h"

#include <QNetworkReply>
#include <QSslError>

namespace {

constexpr const char* ErrorKey = "certificateError";
constexpr const char* WordsKey = "certificateWords";

} // namespace

void WatchCertificate(QNetworkReply* reply)
{
    QObject::connect(reply, &QNetworkReply::sslErrors, reply, [reply](const QList<QSslError>& faults) {
        reply->setProperty(ErrorKey, int(faults.constFirst().error()));
        reply->setProperty(WordsKey, faults.constFirst().errorString());
    });
}

FarmFault CertificateFault(const QNetworkReply& reply)
{
    const QVariant error = reply.property(ErrorKey);
    return error.isValid()
        ? FarmFault {FarmFault::Untrusted, error.toInt(), reply.property(WordsKey).toString()}
        : FarmFault();
}
