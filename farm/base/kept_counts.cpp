#include "farm/base/kept_counts.h"

namespace farm {

// Jobs are counted in blocks of 64 to 16,777,216 running numbers (2 to the power of `shift`), see JobCounts; a later
// migration adds the sizes between. A name is found by its sequences of three characters; its row has the id
// account * 2^32 + number. `job_changes` holds the latest changes that lists may show.
const char* const KeptCounts = R"sql(
CREATE TABLE count_shifts(shift INTEGER PRIMARY KEY);
INSERT INTO count_shifts VALUES (6), (12), (18), (24);

CREATE TABLE job_counts(
    account INTEGER NOT NULL,
    shift INTEGER NOT NULL,
    block INTEGER NOT NULL,
    status INTEGER NOT NULL,
    project INTEGER NOT NULL,
    type TEXT NOT NULL,
    business INTEGER NOT NULL,
    ended INTEGER NOT NULL,
    jobs INTEGER NOT NULL,
    first_submission INTEGER NOT NULL,
    last_submission INTEGER NOT NULL,
    first_end INTEGER,
    last_end INTEGER,
    PRIMARY KEY(account, shift, block, status, project, type, business, ended)) WITHOUT ROWID;
CREATE INDEX empty_job_counts ON job_counts(jobs) WHERE jobs = 0;
INSERT INTO job_counts SELECT account, shift, number >> shift, status, coalesce(project, 0), type, business,
    ended_at IS NOT NULL, count(*), min(submitted_at), max(submitted_at), min(ended_at), max(ended_at)
    FROM jobs, count_shifts GROUP BY 1, 2, 3, 4, 5, 6, 7, 8;

CREATE VIRTUAL TABLE job_names USING
    fts5(folded_name, content = '', detail = 'none', columnsize = 0, tokenize = 'trigram case_sensitive 1');
INSERT INTO job_names(rowid, folded_name) SELECT account << 32 | number, folded_name FROM jobs;

CREATE TABLE job_changes(
    place INTEGER PRIMARY KEY,
    account INTEGER NOT NULL,
    number INTEGER NOT NULL);

CREATE TRIGGER job_added AFTER INSERT ON jobs BEGIN
    INSERT INTO job_counts SELECT new.account, shift, new.number >> shift, new.status, coalesce(new.project, 0), new.type,
        new.business, new.ended_at IS NOT NULL, 1, new.submitted_at, new.submitted_at, new.ended_at, new.ended_at
        FROM count_shifts WHERE true
        ON CONFLICT DO UPDATE SET jobs = jobs + 1,
        first_submission = min(first_submission, excluded.first_submission),
        last_submission = max(last_submission, excluded.last_submission),
        first_end = min(first_end, excluded.first_end), last_end = max(last_end, excluded.last_end);
    INSERT INTO job_names(rowid, folded_name) VALUES (new.account << 32 | new.number, new.folded_name);
    INSERT INTO job_changes(account, number) VALUES (new.account, new.number);
    DELETE FROM job_changes WHERE place <= (SELECT max(place) FROM job_changes) - 10000;
END;

CREATE TRIGGER job_changed AFTER UPDATE OF status, project, type, business, ended_at ON jobs
WHEN new.status <> old.status OR new.project IS NOT old.project OR new.type <> old.type
    OR new.business <> old.business OR new.ended_at IS NOT old.ended_at BEGIN
    INSERT INTO job_counts SELECT old.account, shift, old.number >> shift, old.status, coalesce(old.project, 0), old.type,
        old.business, old.ended_at IS NOT NULL, 0, 0, 0, 0, 0
        FROM count_shifts WHERE true ON CONFLICT DO UPDATE SET jobs = jobs - 1;
    DELETE FROM job_counts WHERE jobs = 0;
    INSERT INTO job_counts SELECT new.account, shift, new.number >> shift, new.status, coalesce(new.project, 0), new.type,
        new.business, new.ended_at IS NOT NULL, 1, new.submitted_at, new.submitted_at, new.ended_at, new.ended_at
        FROM count_shifts WHERE true
        ON CONFLICT DO UPDATE SET jobs = jobs + 1,
        first_submission = min(first_submission, excluded.first_submission),
        last_submission = max(last_submission, excluded.last_submission),
        first_end = min(first_end, excluded.first_end), last_end = max(last_end, excluded.last_end);
    INSERT INTO job_changes(account, number) VALUES (new.account, new.number);
    DELETE FROM job_changes WHERE place <= (SELECT max(place) FROM job_changes) - 10000;
END;

CREATE TRIGGER job_removed AFTER DELETE ON jobs BEGIN
    INSERT INTO job_counts SELECT old.account, shift, old.number >> shift, old.status, coalesce(old.project, 0), old.type,
        old.business, old.ended_at IS NOT NULL, 0, 0, 0, 0, 0
        FROM count_shifts WHERE true ON CONFLICT DO UPDATE SET jobs = jobs - 1;
    DELETE FROM job_counts WHERE jobs = 0;
    INSERT INTO job_names(job_names, rowid, folded_name)
        VALUES ('delete', old.account << 32 | old.number, old.folded_name);
    INSERT INTO job_changes(account, number) VALUES (old.account, old.number);
END;

DROP INDEX jobs_by_submission;
DROP INDEX jobs_by_end;
)sql";

} // namespace farm
