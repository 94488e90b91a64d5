#pragma once

#include <QtGlobal>

/// The HTTP statuses to which the client reacts.
namespace HttpStatus {

constexpr int Ok = 200;
constexpr int PartialContent = 206;
constexpr int BadRequest = 400;
constexpr int Unauthorized = 401; ///< the farm does not know the session
constexpr int NotFound = 404;
constexpr int ProxyAuthenticationRequired = 407;
constexpr int RequestTimeout = 408;
constexpr int Conflict = 409;
constexpr int PreconditionFailed = 412;
constexpr int RangeNotSatisfiable = 416;
constexpr int TooEarly = 425;
constexpr int TooManyRequests = 429;
constexpr int ServerError = 500; ///< the first of them
constexpr int NotImplemented = 501;
constexpr int VersionNotSupported = 505;
constexpr int InsufficientStorage = 507; ///< of an account's quota, or of the farm's disk
constexpr int PastServerErrors = 600;

} // namespace HttpStatus

/// The sizes that the farm and the client agree on. The farm's own limits are in docs/farm-api.md.
namespace FarmNumbers {

constexpr int LongestToken = 4096;
constexpr int LongestTarget = 4096; ///< bytes; the farm accepts twice as many, a proxy may accept fewer
constexpr int LongestName = 256;    ///< of a job
constexpr int ChecksumLength = 64;  ///< hexadecimal digits of SHA-256
constexpr int MostListedJobs = 1000;
constexpr int MostChecksums = 1000;            ///< in one request
constexpr int MostFileListBytes = 1000 * 1000; ///< of a submission; the farm accepts 1 MiB for the whole body
constexpr qint64 LargestChunk = 2LL * 1024 * 1024;  ///< bytes of an upload sent at once
constexpr qint64 LongestAnswer = 8LL * 1024 * 1024; ///< bytes of a JSON answer

} // namespace FarmNumbers
