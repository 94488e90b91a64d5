#pragma once

#include "host/farmclient/http_transport.h"

/// Limits of downloads: parallel transfers and pauses, in milliseconds.
struct DownloadLimits
{
    int transfers = 4;     ///< parallel transfers
    int lists = 2;         ///< parallel requests for a job's files
    int idleTime = 30000;  ///< without any data before a transfer counts as broken
    int firstPause = 1000; ///< after a failure; doubles with each further one
    int longestPause = 60000;
    int progressInterval = 250; ///< between two reports of a file's progress
    HttpLimits http = {};       ///< for the requests for a job's files
};
