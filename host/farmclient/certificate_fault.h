#pragma once

#include "host/farmclient/farm_fault.h"

class QNetworkReply;

/// Keeps the reason why the server's certificate is refused, which the error of the reply does not tell.
void WatchCertificate(QNetworkReply* reply);

/// @return why the server's certificate was not accepted; no fault when the watched reply failed for another reason.
FarmFault CertificateFault(const QNetworkReply& reply);
