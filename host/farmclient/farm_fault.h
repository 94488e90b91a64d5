#pragma once

#include <QString>

/// Why a request failed, apart from any language: its text is made in the language of the moment.
struct FarmFault
{
    static constexpr int NoServer = -1; ///< a cause of status Unreachable: there is no server at the moment

    int status = 0; ///< of HTTP, or one of those of HttpResult; 0 for no fault
    int cause
        = 0; ///< a QNetworkReply::NetworkError of status Unreachable, a QSslError::SslError of Untrusted
    QString words = {}; ///< of the server, or of Qt where there is no sentence for the cause; plain text

    /// @return sentences for the user.
    QString Text() const;

    /// @return why a connection failed, as a part of a sentence.
    QString Cause() const;

    friend bool operator==(const FarmFault& one, const FarmFault& other)
    {
        return one.status == other.status && one.cause == other.cause && one.words == other.words;
    }
};
