#include "farm/base/schema.h"

#include "farm/base/kept_counts.h"
#include "farm/base/kept_sums.h"

namespace farm {

namespace {

// Times are seconds since the epoch, amounts are millionths of the currency unit.
constexpr const char* FirstSchema = R"sql(
CREATE TABLE accounts(
    key INTEGER PRIMARY KEY,
    name TEXT NOT NULL UNIQUE COLLATE NOCASE,
    email TEXT NOT NULL UNIQUE COLLATE NOCASE,
    password TEXT NOT NULL,
    bound INTEGER NOT NULL,
    balance INTEGER NOT NULL,
    second_balance INTEGER NOT NULL);

CREATE TABLE sessions(
    token_hash TEXT PRIMARY KEY,
    account INTEGER NOT NULL REFERENCES accounts ON DELETE CASCADE,
    expires_at INTEGER NOT NULL) WITHOUT ROWID;

CREATE TABLE projects(
    key INTEGER PRIMARY KEY,
    account INTEGER NOT NULL REFERENCES accounts ON DELETE CASCADE,
    name TEXT NOT NULL,
    pool TEXT NOT NULL,
    UNIQUE(account, pool));

CREATE TABLE jobs(
    key INTEGER PRIMARY KEY,
    id TEXT NOT NULL UNIQUE,
    account INTEGER NOT NULL REFERENCES accounts ON DELETE CASCADE,
    number INTEGER NOT NULL,
    project INTEGER REFERENCES projects,
    type TEXT NOT NULL,
    name TEXT NOT NULL,
    folded_name TEXT NOT NULL,
    business INTEGER NOT NULL,
    status INTEGER NOT NULL,
    scene TEXT NOT NULL,
    width INTEGER NOT NULL,
    height INTEGER NOT NULL,
    submitted_at INTEGER NOT NULL,
    ended_at INTEGER,
    message TEXT NOT NULL DEFAULT '',
    UNIQUE(account, number));
CREATE INDEX jobs_by_status ON jobs(account, status, number);
CREATE INDEX jobs_by_project ON jobs(project, number);
CREATE INDEX jobs_by_submission ON jobs(account, submitted_at);
CREATE INDEX jobs_by_end ON jobs(account, ended_at);
CREATE INDEX open_jobs ON jobs(key) WHERE status IN (0, 1);

CREATE TABLE frames(
    job INTEGER NOT NULL REFERENCES jobs ON DELETE CASCADE,
    number INTEGER NOT NULL,
    failures INTEGER NOT NULL DEFAULT 0,
    finished_at INTEGER,
    PRIMARY KEY(job, number)) WITHOUT ROWID;
CREATE INDEX open_frames ON frames(job, number) WHERE finished_at IS NULL;

CREATE TABLE charges(
    key INTEGER PRIMARY KEY,
    account INTEGER NOT NULL REFERENCES accounts ON DELETE CASCADE,
    job INTEGER NOT NULL REFERENCES jobs ON DELETE CASCADE,
    frame INTEGER NOT NULL,
    core_milliseconds INTEGER NOT NULL,
    amount INTEGER NOT NULL,
    charged_at INTEGER NOT NULL);
CREATE INDEX charges_by_job ON charges(job, amount);
CREATE INDEX charges_by_account ON charges(account);
)sql";

// A restart begins a new run of the job; a frame that is being rendered at that time belongs to the earlier run. Open
// jobs are those that the scheduler works on: waiting, running and to full render.
constexpr const char* RunsAndFullRenders = R"sql(
ALTER TABLE jobs ADD COLUMN run INTEGER NOT NULL DEFAULT 1;
DROP INDEX open_jobs;
CREATE INDEX jobs_to_render ON jobs(key) WHERE status IN (0, 1, 6);
CREATE VIEW open_jobs AS SELECT * FROM jobs WHERE status IN (0, 1, 6);
)sql";

// Contents belong to accounts, jobs refer to contents as their files, and finished frames have a picture. The ranges of
// a job do not overlap; together they hold all frames that it can ever render.
constexpr const char* ScenesAndPictures = R"sql(
CREATE TABLE contents(
    account INTEGER NOT NULL REFERENCES accounts ON DELETE CASCADE,
    checksum TEXT NOT NULL,
    size INTEGER NOT NULL,
    PRIMARY KEY(account, checksum)) WITHOUT ROWID;

CREATE TABLE uploads(
    id TEXT PRIMARY KEY,
    account INTEGER NOT NULL REFERENCES accounts ON DELETE CASCADE,
    checksum TEXT NOT NULL,
    size INTEGER NOT NULL,
    touched_at INTEGER NOT NULL,
    unpacked TEXT,
    UNIQUE(account, checksum, size)) WITHOUT ROWID;
CREATE INDEX uploads_by_touch ON uploads(touched_at);

ALTER TABLE jobs ADD COLUMN submission TEXT;
CREATE UNIQUE INDEX jobs_by_client_name ON jobs(account, submission) WHERE submission IS NOT NULL;

CREATE TABLE job_files(
    job INTEGER NOT NULL REFERENCES jobs ON DELETE CASCADE,
    path TEXT NOT NULL,
    checksum TEXT NOT NULL,
    PRIMARY KEY(job, path)) WITHOUT ROWID;

CREATE TABLE frame_ranges(
    job INTEGER NOT NULL REFERENCES jobs ON DELETE CASCADE,
    first INTEGER NOT NULL,
    last INTEGER NOT NULL,
    PRIMARY KEY(job, first)) WITHOUT ROWID;
INSERT INTO frame_ranges SELECT job, 1, max(number) FROM frames GROUP BY job;

ALTER TABLE frames ADD COLUMN file TEXT;
ALTER TABLE frames ADD COLUMN size INTEGER;
ALTER TABLE frames ADD COLUMN checksum TEXT;
)sql";

// Accounts look at single frames, and at their charges by day. The index of charges also serves the sum of a job.
constexpr const char* FrameDetails = R"sql(
ALTER TABLE frames ADD COLUMN changed_at INTEGER NOT NULL DEFAULT 0;
CREATE INDEX frames_by_change ON frames(job, changed_at);

CREATE TABLE frame_logs(
    job INTEGER NOT NULL REFERENCES jobs ON DELETE CASCADE,
    frame INTEGER NOT NULL,
    text TEXT NOT NULL,
    PRIMARY KEY(job, frame));

DROP INDEX charges_by_job;
CREATE INDEX charges_by_frame ON charges(job, frame, amount, core_milliseconds);
DROP INDEX charges_by_account;
CREATE INDEX charges_by_day ON charges(account, charged_at, amount);
)sql";

// The runs of renderers that have begun and whose end is not recorded yet. The handle is the executor's name for a run.
constexpr const char* RunsInWork = R"sql(
CREATE TABLE runs(
    id TEXT PRIMARY KEY,
    job INTEGER NOT NULL REFERENCES jobs ON DELETE CASCADE,
    run INTEGER NOT NULL,
    frame INTEGER NOT NULL,
    handle TEXT NOT NULL DEFAULT '') WITHOUT ROWID;
CREATE INDEX runs_by_job ON runs(job);
)sql";

// The queue finds the next frame by indexes, whatever the number of open jobs and of their frames. While resume_at is
// 0, a job is looked for among its account's jobs of its type; otherwise all its open frames have failed, and the first
// of them may be tried again at that time. A frame that has failed waits until retry_at, one that is passed by for
// ever. The first, the middle and the last frame of a job are early. The level of an account's use is that of
// RecentUse.
constexpr const char* FairQueue = R"sql(
ALTER TABLE jobs ADD COLUMN priority INTEGER NOT NULL DEFAULT 0;
ALTER TABLE jobs ADD COLUMN early INTEGER NOT NULL DEFAULT 0;
ALTER TABLE jobs ADD COLUMN resume_at INTEGER NOT NULL DEFAULT 0;
ALTER TABLE jobs ADD COLUMN begun_run INTEGER NOT NULL DEFAULT 0;
UPDATE jobs SET begun_run = run WHERE EXISTS
    (SELECT 1 FROM frames WHERE job = jobs.key AND finished_at IS NOT NULL);
DROP INDEX jobs_to_render;
CREATE INDEX jobs_in_turn ON jobs(account, type, priority DESC, key)
    WHERE status IN (0, 1, 6) AND resume_at = 0;
CREATE INDEX jobs_with_early_frames ON jobs(account, type, priority DESC, key)
    WHERE status IN (0, 1, 6) AND resume_at = 0 AND early = 1;
CREATE INDEX jobs_to_resume ON jobs(resume_at) WHERE status IN (0, 1, 6) AND resume_at > 0;

ALTER TABLE frames ADD COLUMN early INTEGER NOT NULL DEFAULT 0;
ALTER TABLE frames ADD COLUMN retry_at INTEGER;
DROP INDEX open_frames;
CREATE INDEX ready_frames ON frames(job, early DESC, number) WHERE finished_at IS NULL AND retry_at IS NULL;
CREATE INDEX failed_frames ON frames(job, retry_at) WHERE finished_at IS NULL AND retry_at IS NOT NULL;

CREATE TABLE account_use(
    account INTEGER PRIMARY KEY REFERENCES accounts ON DELETE CASCADE,
    level REAL NOT NULL);
CREATE TABLE stopped_types(
    type TEXT PRIMARY KEY,
    message TEXT NOT NULL) WITHOUT ROWID;
)sql";

// Administrators see the jobs of all accounts, above all those with failed frames.
constexpr const char* Administrators = R"sql(
ALTER TABLE accounts ADD COLUMN administrator INTEGER NOT NULL DEFAULT 0;
CREATE INDEX jobs_with_messages ON jobs(ifnull(ended_at, 9000000000000)) WHERE message <> '';
)sql";

// An account may have a price and a quota (in bytes) of its own. A project is a group of accounts, known by its pool;
// there used to be one for each account. The demo account in arrears becomes bound, so that clients show its balance.
constexpr const char* TermsAndMembers = R"sql(
ALTER TABLE accounts ADD COLUMN disabled INTEGER NOT NULL DEFAULT 0;
ALTER TABLE accounts ADD COLUMN quota INTEGER;
ALTER TABLE accounts ADD COLUMN price INTEGER;
ALTER TABLE accounts ADD COLUMN priority INTEGER NOT NULL DEFAULT 0;
UPDATE accounts SET bound = 1 WHERE email = 'arrears@quillstar.example';

ALTER TABLE sessions ADD COLUMN began_at INTEGER NOT NULL DEFAULT 0;
ALTER TABLE sessions ADD COLUMN address TEXT NOT NULL DEFAULT '';
CREATE INDEX sessions_by_account ON sessions(account, address);

PRAGMA defer_foreign_keys = ON;
UPDATE jobs SET project = (SELECT min(same.key) FROM projects own JOIN projects same ON same.pool = own.pool
        WHERE own.key = jobs.project)
    WHERE project NOT IN (SELECT min(key) FROM projects GROUP BY pool);
CREATE TABLE old_projects AS SELECT * FROM projects;
DROP TABLE projects;
CREATE TABLE projects(
    key INTEGER PRIMARY KEY,
    name TEXT NOT NULL,
    pool TEXT NOT NULL UNIQUE);
INSERT INTO projects SELECT min(key), name, pool FROM old_projects GROUP BY pool;
CREATE TABLE project_members(
    account INTEGER NOT NULL REFERENCES accounts ON DELETE CASCADE,
    project INTEGER NOT NULL REFERENCES projects ON DELETE CASCADE,
    PRIMARY KEY(account, project)) WITHOUT ROWID;
CREATE INDEX members_by_project ON project_members(project);
INSERT INTO project_members SELECT account, projects.key FROM old_projects JOIN projects USING (pool);
DROP TABLE old_projects;
)sql";

// Payments and charges are never changed; a balance is their sum, kept by triggers.
constexpr const char* Ledger = R"sql(
CREATE TABLE payments(
    key INTEGER PRIMARY KEY,
    account INTEGER NOT NULL REFERENCES accounts ON DELETE CASCADE,
    amount INTEGER NOT NULL,
    paid_at INTEGER NOT NULL,
    note TEXT NOT NULL DEFAULT '');
CREATE INDEX payments_by_day ON payments(account, paid_at, amount);
INSERT INTO payments(account, amount, paid_at, note)
    SELECT key, balance + coalesce((SELECT sum(amount) FROM charges WHERE account = accounts.key), 0),
        coalesce((SELECT min(charged_at) FROM charges WHERE account = accounts.key), strftime('%s', 'now')),
        'opening balance'
    FROM accounts;
ALTER TABLE charges ADD COLUMN price INTEGER;

CREATE TRIGGER charge_lowers_balance AFTER INSERT ON charges BEGIN
    UPDATE accounts SET balance = balance - NEW.amount WHERE key = NEW.account;
END;
CREATE TRIGGER payment_raises_balance AFTER INSERT ON payments BEGIN
    UPDATE accounts SET balance = balance + NEW.amount WHERE key = NEW.account;
END;
CREATE TRIGGER charges_stay BEFORE DELETE ON charges BEGIN
    SELECT raise(ABORT, 'charges are never removed');
END;
CREATE TRIGGER charges_are_final BEFORE UPDATE ON charges BEGIN
    SELECT raise(ABORT, 'charges are never changed');
END;
CREATE TRIGGER payments_stay BEFORE DELETE ON payments BEGIN
    SELECT raise(ABORT, 'payments are never removed');
END;
CREATE TRIGGER payments_are_final BEFORE UPDATE ON payments BEGIN
    SELECT raise(ABORT, 'payments are never changed');
END;
)sql";

// Each change with its author and where it came from.
constexpr const char* Audit = R"sql(
CREATE TABLE audit(
    key INTEGER PRIMARY KEY,
    at INTEGER NOT NULL,
    who TEXT NOT NULL,
    origin TEXT NOT NULL,
    action TEXT NOT NULL,
    subject TEXT NOT NULL,
    details TEXT NOT NULL DEFAULT '');
)sql";

// Whether a job has anything in the data folder: 2 for files and perhaps leftovers of runs, 1 for files, 0 for nothing.
// Each run leaves leftovers until they are removed, even a run that begins while its job is being deleted. A content is
// used when it arrives, when a client asks whether it is there, and while a job needs it.
constexpr const char* FreedFiles = R"sql(
ALTER TABLE jobs ADD COLUMN files INTEGER NOT NULL DEFAULT 1;
ALTER TABLE jobs ADD COLUMN scene_bytes INTEGER NOT NULL DEFAULT 0;
ALTER TABLE jobs ADD COLUMN picture_bytes INTEGER NOT NULL DEFAULT 0;
UPDATE jobs SET files = 2,
    picture_bytes = (SELECT coalesce(sum(size), 0) FROM frames WHERE job = jobs.key),
    scene_bytes = (SELECT coalesce(sum(size), 0) FROM job_files JOIN contents USING (checksum)
        WHERE job = jobs.key AND contents.account = jobs.account);
CREATE INDEX jobs_to_free ON jobs(key) WHERE status = 5 AND files > 0;
CREATE INDEX jobs_to_tidy ON jobs(key) WHERE status IN (2, 3, 4, 7, 8, 9) AND files = 2;
CREATE INDEX jobs_by_bytes ON jobs(account, scene_bytes + picture_bytes) WHERE files > 0;
CREATE TRIGGER run_leaves_files AFTER INSERT ON runs BEGIN
    UPDATE jobs SET files = 2 WHERE key = NEW.job AND files < 2;
END;

CREATE INDEX job_files_by_content ON job_files(checksum, job);
ALTER TABLE contents ADD COLUMN used_at INTEGER NOT NULL DEFAULT 0;
UPDATE contents SET used_at = strftime('%s', 'now');
CREATE INDEX contents_by_use ON contents(used_at);
CREATE INDEX contents_by_checksum ON contents(checksum);

CREATE TABLE data_mark(
    farm TEXT NOT NULL,
    number INTEGER NOT NULL);
)sql";

// Why the jobs of a type wait: its renderer fails, or is not installed. The latter is checked again at each start.
constexpr const char* MissingRenderers = R"sql(
ALTER TABLE stopped_types ADD COLUMN missing INTEGER NOT NULL DEFAULT 0;
)sql";

// The open jobs of a hindered type wait although its renderer has not failed. The hindrance of a job is the farm's last
// fault at one of its frames, until a frame is finished.
constexpr const char* HindrancesOfJobs = R"sql(
CREATE TABLE hindered_types(
    type TEXT PRIMARY KEY,
    message TEXT NOT NULL) WITHOUT ROWID;
ALTER TABLE jobs ADD COLUMN hindrance TEXT NOT NULL DEFAULT '';
DROP INDEX jobs_with_messages;
CREATE INDEX jobs_at_work ON jobs(key) WHERE status IN (0, 1, 6) AND files = 2;
CREATE INDEX jobs_in_trouble ON jobs(ifnull(ended_at, 9000000000000)) WHERE message <> '' OR hindrance <> '';
DELETE FROM stopped_types WHERE missing;
ALTER TABLE stopped_types DROP COLUMN missing;
)sql";

// Every `step`-th frame of a range belongs to the job.
constexpr const char* FrameSteps = R"sql(
ALTER TABLE frame_ranges ADD COLUMN step INTEGER NOT NULL DEFAULT 1;
)sql";

// A frame is charged once in each run of its job; older charges did not record the run. A mark in the job's folder
// tells which run has begun. A deleted job has no frames once its files are freed, but keeps its sums. Old entries of
// the audit are removed.
constexpr const char* ShortRecords = R"sql(
ALTER TABLE charges ADD COLUMN run INTEGER;
ALTER TABLE jobs DROP COLUMN begun_run;

DROP TRIGGER frame_removed;
CREATE TRIGGER frame_removed AFTER DELETE ON frames WHEN (SELECT status FROM jobs WHERE key = OLD.job) <> 5 BEGIN
    UPDATE job_sums SET frames = frames - 1, finished = finished - (OLD.finished_at IS NOT NULL) WHERE job = OLD.job;
END;
UPDATE jobs SET files = 1 WHERE status = 5 AND files = 0;
)sql";

// Each block now consists of eight smaller ones, so that opening one reads few counts.
constexpr const char* MoreCounts = R"sql(
INSERT INTO count_shifts VALUES (9), (15), (21);
INSERT INTO job_counts SELECT account, wider.shift, block >> (wider.shift - job_counts.shift), status, project, type,
    business, ended, sum(jobs), min(first_submission), max(last_submission), min(first_end), max(last_end)
    FROM job_counts, count_shifts AS wider WHERE job_counts.shift = 6 AND wider.shift IN (9, 15, 21)
    GROUP BY 1, 2, 3, 4, 5, 6, 7, 8;
)sql";

// Marks jobs that ended before scenes were removed at the end of a job, so that theirs are removed too.
constexpr const char* LeftScenes = R"sql(
UPDATE jobs SET files = 2 WHERE files = 1 AND status IN (2, 3, 4, 7, 8, 9);
)sql";

} // namespace

storage::Migrations Schema()
{
    return {FirstSchema, RunsAndFullRenders, ScenesAndPictures, FrameDetails, RunsInWork, FairQueue,
        KeptCounts, Administrators, TermsAndMembers, Ledger, Audit, FreedFiles, MissingRenderers,
        HindrancesOfJobs, KeptSums, FrameSteps, ShortRecords, MoreCounts, LeftScenes};
}

} // namespace farm
