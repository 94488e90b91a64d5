#include "host/farmclient/farm_fault.h"

#include "host/farmclient/farm_numbers.h"
#include "host/farmclient/sentences.h"

#include <QCoreApplication>
#include <QNetworkReply>
#include <QSslError>

#include <algorithm>
#include <iterator>

namespace {

struct Cause
{
    int code;
    const char* text;
};

constexpr const char ClosedEarly[]
    = QT_TRANSLATE_NOOP("FarmFault", "the connection was closed before the answer was complete");
constexpr const char NoAnswer[] = QT_TRANSLATE_NOOP("FarmFault", "there was no answer in time");
constexpr const char NoHttp[] = QT_TRANSLATE_NOOP("FarmFault", "the server that answered is not a farm");

constexpr Cause connectionCauses[] = {
    {QNetworkReply::ConnectionRefusedError, QT_TRANSLATE_NOOP("FarmFault", "the connection was refused")},
    {QNetworkReply::RemoteHostClosedError, ClosedEarly},
    {QNetworkReply::ContentReSendError, ClosedEarly},
    {QNetworkReply::HostNotFoundError,
        QT_TRANSLATE_NOOP("FarmFault", "the network knows no computer of this name")},
    {QNetworkReply::TimeoutError, NoAnswer},
    {QNetworkReply::OperationCanceledError, NoAnswer},
    {QNetworkReply::SslHandshakeFailedError,
        QT_TRANSLATE_NOOP("FarmFault", "no encrypted connection could be agreed on")},
    {QNetworkReply::TemporaryNetworkFailureError,
        QT_TRANSLATE_NOOP("FarmFault", "this computer has lost its network")},
    {QNetworkReply::NetworkSessionFailedError,
        QT_TRANSLATE_NOOP("FarmFault", "this computer is not on a network")},
    {QNetworkReply::UnknownNetworkError,
        QT_TRANSLATE_NOOP("FarmFault", "the network failed, or the connection was closed early")},
    {QNetworkReply::ProxyConnectionRefusedError,
        QT_TRANSLATE_NOOP("FarmFault", "the proxy refused the connection")},
    {QNetworkReply::ProxyConnectionClosedError,
        QT_TRANSLATE_NOOP("FarmFault", "the proxy closed the connection")},
    {QNetworkReply::ProxyNotFoundError,
        QT_TRANSLATE_NOOP("FarmFault", "the network knows no proxy of this name")},
    {QNetworkReply::ProxyTimeoutError, QT_TRANSLATE_NOOP("FarmFault", "the proxy did not answer in time")},
    {QNetworkReply::UnknownProxyError,
        QT_TRANSLATE_NOOP("FarmFault", "the proxy could not pass the request on")},
    {QNetworkReply::ProtocolUnknownError, NoHttp},
    {QNetworkReply::ProtocolInvalidOperationError, NoHttp},
    {QNetworkReply::ProtocolFailure, NoHttp},
};

constexpr const char UnknownIssuer[]
    = QT_TRANSLATE_NOOP("FarmFault", "this computer does not know who has issued it");
constexpr const char SelfSigned[] = QT_TRANSLATE_NOOP("FarmFault", "the server has issued it itself");

constexpr Cause certificateCauses[] = {
    {QSslError::SelfSignedCertificate, SelfSigned},
    {QSslError::SelfSignedCertificateInChain, SelfSigned},
    {QSslError::CertificateExpired, QT_TRANSLATE_NOOP("FarmFault", "it has expired")},
    {QSslError::CertificateNotYetValid,
        QT_TRANSLATE_NOOP("FarmFault", "it is not valid yet, or this computer's clock is wrong")},
    {QSslError::HostNameMismatch, QT_TRANSLATE_NOOP("FarmFault", "it belongs to another server")},
    {QSslError::UnableToGetIssuerCertificate, UnknownIssuer},
    {QSslError::UnableToGetLocalIssuerCertificate, UnknownIssuer},
    {QSslError::UnableToVerifyFirstCertificate, UnknownIssuer},
    {QSslError::CertificateUntrusted, UnknownIssuer},
    {QSslError::InvalidCaCertificate, UnknownIssuer},
    {QSslError::CertificateRevoked, QT_TRANSLATE_NOOP("FarmFault", "it has been revoked")},
    {QSslError::CertificateBlacklisted, QT_TRANSLATE_NOOP("FarmFault", "it is known to be misused")},
    {QSslError::NoPeerCertificate, QT_TRANSLATE_NOOP("FarmFault", "the server shows none")},
};

/// A refusal in the farm's words, and the sentence shown to the user instead.
struct Refusal
{
    const char* words;
    const char* text;
};

constexpr const char OverQuota[]
    = QT_TRANSLATE_NOOP("FarmFault", "The files would exceed the account's space on the farm.");
constexpr const char BadPackage[]
    = QT_TRANSLATE_NOOP("FarmFault", "The farm cannot read the packed files. Please submit the scene again.");
constexpr const char TooManyFiles[]
    = QT_TRANSLATE_NOOP("FarmFault", "The packed files are too large for the farm.");

constexpr Refusal refusals[] = {
    {"the name or the password is wrong",
        QT_TRANSLATE_NOOP("FarmFault", "The user name or the password is wrong.")},
    {"sign in first", QT_TRANSLATE_NOOP("FarmFault", "The session has ended. Please sign in again.")},
    {"there were too many requests; try again later",
        QT_TRANSLATE_NOOP("FarmFault", "There were too many requests. Please try again in a moment.")},
    {"the farm could not handle the request",
        QT_TRANSLATE_NOOP("FarmFault", "An error occurred on the farm. The details are in its log.")},
    {"the farm's disk is full; try again later", QT_TRANSLATE_NOOP("FarmFault", "The farm's disk is full.")},
    {"there is no such job", QT_TRANSLATE_NOOP("FarmFault", "The farm has no such job.")},
    {"there is no such upload", QT_TRANSLATE_NOOP("FarmFault", "The farm no longer has this upload.")},
    {"there is nothing under this path",
        QT_TRANSLATE_NOOP(
            "FarmFault", "The server does not know this request. It may be older than the client.")},
    {"type is not one of the farm's job types",
        QT_TRANSLATE_NOOP("FarmFault", "The farm does not render jobs of this type.")},
    {"pool does not belong to one of the account's projects",
        QT_TRANSLATE_NOOP("FarmFault", "The account does not have this project.")},
    {"the farm does not have the content of one of the files",
        QT_TRANSLATE_NOOP("FarmFault", "The farm lacks one of the files.")},
    {"another request is working on this upload",
        QT_TRANSLATE_NOOP("FarmFault", "The farm is still working on this upload.")},
    {"this would exceed the account's quota", OverQuota},
    {"the files of the job exceed the account's quota", OverQuota},
    {"the request is too large", TooManyFiles},
    {"a package may not be larger than 8 GiB", TooManyFiles},
    {"the files of the package are too large", TooManyFiles},
    {"the package is empty or has too many entries", BadPackage},
    {"the package is not a ZIP archive", BadPackage},
    {"the package is not complete", BadPackage},
    {"the package does not have the announced checksum", BadPackage},
    {"an entry of the package cannot be read", BadPackage},
    {"an entry of the package is damaged", BadPackage},
};

QString Translated(const char* text)
{
    return QCoreApplication::translate("FarmFault", text);
}

/// @return the text of a code; the system's text where the list has none.
template <typename List>
QString TextOf(const List& list, int code, const QString& otherwise)
{
    const auto found = std::find_if(
        std::begin(list), std::end(list), [code](const Cause& cause) { return cause.code == code; });
    return found == std::end(list) ? otherwise : Translated(found->text);
}

QString RefusalText(int status, const QString& words)
{
    const auto found = std::find_if(std::begin(refusals), std::end(refusals),
        [&words](const Refusal& refusal) { return words == QLatin1String(refusal.words); });
    if (found != std::end(refusals))
        return Translated(found->text);
    if (!words.isEmpty())
        return Sentence(words);
    if (status == HttpStatus::ProxyAuthenticationRequired)
        return Translated(QT_TRANSLATE_NOOP(
            "FarmFault", "The proxy asks for a name and a password, or refuses those it was given."));
    return Translated(QT_TRANSLATE_NOOP("FarmFault", "The server answered with status %1.")).arg(status);
}

} // namespace

QString FarmFault::Cause() const
{
    return status == Untrusted ? TextOf(certificateCauses, cause, words)
                               : TextOf(connectionCauses, cause, words);
}

QString FarmFault::Text() const
{
    switch (status) {
    case 0:
    case HttpStatus::Ok:
        return {};
    case Unreachable:
        if (cause == NoServer)
            return Translated(QT_TRANSLATE_NOOP("FarmFault", "The farm is not running at the moment."));
        return Sentence(
            Translated(QT_TRANSLATE_NOOP("FarmFault", "The server cannot be reached: %1")).arg(Cause()));
    case Untrusted:
        return Sentence(
            Translated(QT_TRANSLATE_NOOP("FarmFault",
                           "The server's certificate is not accepted, so nothing was sent to it: %1"))
                .arg(Cause()));
    case TimedOut:
        return Translated(QT_TRANSLATE_NOOP("FarmFault", "The server did not answer in time."));
    case TooLarge:
        return Translated(QT_TRANSLATE_NOOP("FarmFault", "The server's answer is too large."));
    case NotJson:
        return Translated(QT_TRANSLATE_NOOP("FarmFault", "The server's answer cannot be read."));
    default:
        return RefusalText(status, words);
    }
}
