#pragma once

#include "host/farmclient/http_transport.h"

/// How much is done at a time and how patiently. Times in milliseconds.
struct DownloadLimits
{
    int transfers = 4;     ///< files at a time
    int lists = 2;         ///< jobs asked for their files at a time
    int idleTime = 30000;  ///< without a byte before a transfer counts as broken
    int firstPause = 1000; ///< after a failure; doubled after each further one
    int longestPause = 60000;
    int progressInterval = 250; ///< between two reports of a file's progress
    HttpLimits http = {};       ///< of the questions for a job's files
};
