#pragma once

#include "storage/database.h"

/// The scripts that bring submissions.sqlite up to date: the tasks, and the checksums of files.
storage::Migrations SubmitSchema();
