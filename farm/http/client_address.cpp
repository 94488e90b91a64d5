#include "farm/http/client_address.h"

#include <QRegularExpression>

#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <stdexcept>

namespace farm {

namespace {

QByteArray TextOf(int family, const void* bytes)
{
    std::array<char, INET6_ADDRSTRLEN> text {};
    return ::inet_ntop(family, bytes, text.data(), text.size()) ? QByteArray(text.data()) : QByteArray();
}

/// Without the brackets, port and zone that may surround an address.
QByteArray Bare(QByteArray text)
{
    text = text.trimmed();
    if (text.startsWith('['))
        text = text.mid(1, text.indexOf(']') - 1);
    else if (text.count(':') == 1)
        text = text.left(text.indexOf(':'));
    const int zone = text.indexOf('%');
    return zone < 0 ? text : text.left(zone);
}

/// The addresses of a header "Forwarded" (RFC 7239); an element without one counts as an empty address.
QList<QByteArray> ForwardedAddresses(const QByteArray& header)
{
    static const QRegularExpression pattern(
        QStringLiteral("(?:\\A|;)\\s*for\\s*=\\s*\"?([^\";]*)"), QRegularExpression::CaseInsensitiveOption);
    QList<QByteArray> addresses;
    const QList<QByteArray> elements = header.split(',');
    for (const QByteArray& element : elements)
        addresses.append(pattern.match(QString::fromLatin1(element)).captured(1).toLatin1());
    return addresses;
}

} // namespace

QByteArray PlainAddress(const QByteArray& text)
{
    const QByteArray bare = Bare(text);
    in_addr four {};
    if (::inet_pton(AF_INET, bare.constData(), &four) == 1)
        return TextOf(AF_INET, &four);
    in6_addr six {};
    if (::inet_pton(AF_INET6, bare.constData(), &six) != 1)
        return {};
    return IN6_IS_ADDR_V4MAPPED(&six) ? TextOf(AF_INET, &six.s6_addr[12]) : TextOf(AF_INET6, &six);
}

QByteArray NetworkOf(const QByteArray& plainAddress)
{
    constexpr std::size_t HostBytes = 8;
    in6_addr six {};
    if (::inet_pton(AF_INET6, plainAddress.constData(), &six) != 1)
        return plainAddress;
    std::memset(&six.s6_addr[sizeof(six.s6_addr) - HostBytes], 0, HostBytes);
    return TextOf(AF_INET6, &six);
}

bool IsLoopback(const QString& address)
{
    if (address == QLatin1String("localhost"))
        return true;
    const QByteArray plain = PlainAddress(address.toLatin1());
    return plain.startsWith("127.") || plain == "::1";
}

TrustedProxies::TrustedProxies(const QStringList& addresses)
{
    for (const QString& address : addresses) {
        const QByteArray plain = PlainAddress(address.toLatin1());
        if (plain.isEmpty())
            throw std::runtime_error(
                "the proxy \"" + address.toStdString() + "\" is not an IPv4 or IPv6 address");
        m_addresses.insert(plain);
    }
}

QByteArray TrustedProxies::ClientOf(
    const QByteArray& peer, const QByteArray& forwardedFor, const QByteArray& forwarded) const
{
    const QByteArray plainPeer = PlainAddress(peer);
    if (!m_addresses.contains(plainPeer))
        return plainPeer;
    const QByteArray first = LastOutside(forwardedFor.split(','));
    const QByteArray second = LastOutside(ForwardedAddresses(forwarded));
    const bool hasBoth = !forwardedFor.isEmpty() && !forwarded.isEmpty();
    const QByteArray client = hasBoth && first != second ? QByteArray()
        : forwarded.isEmpty()                            ? first
                                                         : second;
    return client.isEmpty() ? plainPeer : client;
}

/// Each proxy appends the address of its caller, so the last address that is not a proxy's is the client's. Anything
/// before it was claimed by the client. Empty when there is no such address or it cannot be read.
QByteArray TrustedProxies::LastOutside(const QList<QByteArray>& addresses) const
{
    for (auto address = addresses.crbegin(); address != addresses.crend(); ++address) {
        const QByteArray plain = PlainAddress(*address);
        if (!m_addresses.contains(plain))
            return plain;
    }
    return {};
}

} // namespace farm
