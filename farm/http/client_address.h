#pragma once

#include <QByteArray>
#include <QSet>
#include <QStringList>

namespace farm {

/// An IPv4 or IPv6 address in canonical form: without port, brackets or zone, and IPv4 in IPv6 as IPv4. Empty when
/// the text is not an address.
QByteArray PlainAddress(const QByteArray& text);

/// The key by which limits count a client: the address or, for IPv6, its 64-bit network, which may belong to one client
/// as a whole.
QByteArray NetworkOf(const QByteArray& plainAddress);

/// Whether only this machine can reach a server that listens there.
bool IsLoopback(const QString& address);

/// The proxies through which clients come. Only their headers about clients are trusted.
class TrustedProxies
{
public:
    /// Throws std::runtime_error when one is not an IPv4 or IPv6 address.
    explicit TrustedProxies(const QStringList& addresses = {});

    /// The address of the client of a request.
    /// @param peer is where the connection comes from.
    /// @param forwardedFor and `forwarded` are all values of the headers X-Forwarded-For and Forwarded, joined by
    /// commas. A proxy writes one of them and may pass on the other as the client sent it; when both are there and
    /// differ, both are ignored.
    QByteArray ClientOf(
        const QByteArray& peer, const QByteArray& forwardedFor, const QByteArray& forwarded) const;

private:
    QByteArray LastOutside(const QList<QByteArray>& addresses) const;

    QSet<QByteArray> m_addresses;
};

} // namespace farm
