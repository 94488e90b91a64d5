#pragma once

#include <QString>

/// The reason why a request failed, without its text, which is made in the current language.
struct FarmFault
{
    // These replace the HTTP status when there is no usable answer.
    static constexpr int Unreachable = -1;
    static constexpr int TimedOut = -2;
    static constexpr int TooLarge = -3;
    static constexpr int NotJson = -4;
    static constexpr int Untrusted = -5; ///< the server's certificate

    static constexpr int NoServer = -1; ///< a cause with status Unreachable: there is no server at the moment

    int status = 0; ///< of HTTP, or one of the above; 0 for no fault
    int cause
        = 0; ///< a QNetworkReply::NetworkError with status Unreachable, a QSslError::SslError with Untrusted
    QString words = {}; ///< the server's words, or Qt's where the cause has no sentence; plain text

    /// @return sentences for the user.
    QString Text() const;

    /// @return the reason why a connection failed, as a part of a sentence.
    QString Cause() const;

    friend bool operator==(const FarmFault& one, const FarmFault& other)
    {
        return one.status == other.status && one.cause == other.cause && one.words == other.words;
    }
};
