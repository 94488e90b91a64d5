#pragma once

#include <QString>

#include <functional>
#include <memory>

struct evp_md_ctx_st;

/// Checksums are SHA-256 as 64 lower-case hexadecimal digits.
namespace storage {

/// The checksum of bytes that come in blocks. Throws std::runtime_error when the machine is out of memory.
class Sha256
{
public:
    Sha256();

    void Add(const char* bytes, qint64 count);

    /// The checksum of all bytes so far; more may follow.
    QString Result() const;

    /// Forgets all bytes.
    void Reset();

private:
    struct Free
    {
        void operator()(evp_md_ctx_st* context) const;
    };
    std::unique_ptr<evp_md_ctx_st, Free> m_context;
};

/// Reads the whole file. Throws std::runtime_error when it cannot be read.
/// @param onBytes gets the number of bytes read since the previous call; when it returns false, reading stops and the
/// result is empty.
QString FileChecksum(const QString& path, const std::function<bool(qint64)>& onBytes = {});

/// Whether the text has the form of a checksum.
bool IsChecksum(const QString& text);

} // namespace storage
