#pragma once

#include "host/farmclient/http_transport.h"

/// Limits of downloads: parallel transfers and pauses, in milliseconds.
struct DownloadLimits
{
    int transfers = 4;     ///< parallel transfers
    int lists = 2;         ///< parallel requests for a job's files
    int idleTime = 30000;  ///< time without any data after which a transfer counts as broken
    int firstPause = 1000; ///< pause after the first failure; doubles with each further one
    int longestPause = 60000;
    int progressInterval = 250; ///< time between two reports of a file's progress
    HttpLimits http = {};       ///< limits of the requests for a job's files
};
