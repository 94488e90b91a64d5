#pragma once

#include <QtGlobal>

/// The HTTP statuses to which the client reacts.
namespace HttpStatus {

constexpr int Ok = 200;
constexpr int PartialContent = 206;
constexpr int Redirection = 300; ///< the first redirection; the farm redirects nobody
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
constexpr int ServerError = 500; ///< the first server error
constexpr int NotImplemented = 501;
constexpr int VersionNotSupported = 505;
constexpr int InsufficientStorage = 507; ///< the account's quota or the farm's disk is full
constexpr int PastServerErrors = 600;

} // namespace HttpStatus

/// The sizes and times that the farm and the client agree on. The farm's own limits are in docs/farm-api.md.
namespace FarmNumbers {

constexpr int LongestToken = 4096;
constexpr int LongestTarget = 4096; ///< bytes; the farm accepts twice as many, a proxy may accept fewer
constexpr int LongestName = 256;    ///< characters in the name of a job
constexpr int ChecksumLength = 64;  ///< hexadecimal digits of SHA-256
constexpr int MostRanges = 15;      ///< ranges of frames in a job
constexpr int LastFrame = 99999;    ///< the highest number of a frame
constexpr int MostFrames = 20000;   ///< frames in a job
constexpr int LongestSide = 16384;  ///< pixels; the width or height of a frame
constexpr int LowestPriority = -100;
constexpr int HighestPriority = 100;
constexpr int MostListedJobs = 1000;
constexpr int Heartbeat
    = 5000; ///< ms after which the farm's stream of events carries something, changes or not
constexpr int MostChecksums = 1000;            ///< in one request
constexpr int MostFileListBytes = 1000 * 1000; ///< per submission; the farm accepts 1 MiB for the whole body
constexpr qint64 LargestChunk = 2LL * 1024 * 1024;  ///< bytes of an upload in one request
constexpr double LargestSize = 1LL << 50;           ///< bytes; a file, as a JSON number
constexpr qint64 LongestAnswer = 8LL * 1024 * 1024; ///< bytes of a JSON answer

} // namespace FarmNumbers
