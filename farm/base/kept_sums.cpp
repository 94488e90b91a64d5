#include "farm/base/kept_sums.h"

namespace farm {

// Triggers keep the sums, since a job may have tens of thousands of frames and is looked at every few seconds.
const char* const KeptSums = R"sql(
CREATE TABLE job_sums(
    job INTEGER PRIMARY KEY REFERENCES jobs ON DELETE CASCADE,
    frames INTEGER NOT NULL,
    finished INTEGER NOT NULL,
    cost INTEGER NOT NULL);
INSERT INTO job_sums SELECT key, (SELECT count(*) FROM frames WHERE job = key),
    (SELECT count(finished_at) FROM frames WHERE job = key),
    (SELECT coalesce(sum(amount), 0) FROM charges WHERE job = jobs.key) FROM jobs;

CREATE TRIGGER job_gets_sums AFTER INSERT ON jobs BEGIN
    INSERT INTO job_sums VALUES (NEW.key, 0, 0, 0);
END;
CREATE TRIGGER frame_added AFTER INSERT ON frames BEGIN
    UPDATE job_sums SET frames = frames + 1, finished = finished + (NEW.finished_at IS NOT NULL) WHERE job = NEW.job;
END;
CREATE TRIGGER frame_changed AFTER UPDATE OF finished_at ON frames
WHEN (NEW.finished_at IS NULL) <> (OLD.finished_at IS NULL) BEGIN
    UPDATE job_sums SET finished = finished + iif(NEW.finished_at IS NULL, -1, 1) WHERE job = NEW.job;
END;
CREATE TRIGGER frame_removed AFTER DELETE ON frames BEGIN
    UPDATE job_sums SET frames = frames - 1, finished = finished - (OLD.finished_at IS NOT NULL) WHERE job = OLD.job;
END;
CREATE TRIGGER charge_raises_cost AFTER INSERT ON charges BEGIN
    UPDATE job_sums SET cost = cost + NEW.amount WHERE job = NEW.job;
END;
)sql";

} // namespace farm
