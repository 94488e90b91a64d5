#include "host/rendercore/submit/submit_schema.h"

namespace {

constexpr const char* FirstSchema = R"sql(
CREATE TABLE tasks(
    number INTEGER PRIMARY KEY AUTOINCREMENT,
    owner TEXT NOT NULL,
    scene TEXT NOT NULL,
    started TEXT NOT NULL,
    submission TEXT NOT NULL,
    stage INTEGER NOT NULL DEFAULT 0,
    error INTEGER NOT NULL DEFAULT 0,
    message TEXT NOT NULL DEFAULT '',
    arguments TEXT NOT NULL DEFAULT '[]',
    goes_on_without INTEGER NOT NULL DEFAULT 0,
    arguments_checked INTEGER NOT NULL DEFAULT 0,
    refused TEXT NOT NULL DEFAULT '[]',
    done INTEGER NOT NULL DEFAULT 0,
    work TEXT NOT NULL DEFAULT '{}'
);
CREATE INDEX tasks_by_owner ON tasks(owner);
)sql";

// Earlier versions did not record who had set the arguments; it may have been the user.
constexpr const char* EditedArguments = R"sql(
ALTER TABLE tasks ADD COLUMN arguments_edited INTEGER NOT NULL DEFAULT 0;
UPDATE tasks SET arguments_edited = 1 WHERE arguments <> '[]';
)sql";

// Times of changes are nanoseconds since the epoch, the time of the latest use seconds.
constexpr const char* KnownChecksums = R"sql(
CREATE TABLE checksums(
    path TEXT PRIMARY KEY,
    size INTEGER NOT NULL,
    modified INTEGER NOT NULL,
    changed INTEGER NOT NULL,
    checksum TEXT NOT NULL,
    used INTEGER NOT NULL
);
CREATE INDEX checksums_by_use ON checksums(used);
)sql";

constexpr const char* Priorities = "ALTER TABLE tasks ADD COLUMN priority INTEGER NOT NULL DEFAULT 0";

} // namespace

storage::Migrations SubmitSchema()
{
    return {FirstSchema, EditedArguments, KnownChecksums, Priorities};
}
