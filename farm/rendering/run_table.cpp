#include "farm/rendering/run_table.h"

#include "farm/base/random.h"

namespace farm {

RunTable::RunTable(Database& database)
    : m_database(database)
{
}

// The random digits also distinguish the runs of several farms on one cluster, and those from before and after the
// database was restored from a copy.
RunId RunTable::NewRunId(const FrameKey& frame)
{
    constexpr int Digits = 8;
    return QStringLiteral("j%1-r%2-f%3-%4")
        .arg(frame.job)
        .arg(frame.run)
        .arg(frame.number)
        .arg(NewId().left(Digits));
}

void RunTable::Begin(const std::vector<Entry>& runs, const std::function<void()>& record)
{
    m_database.Write([&](SQLite::Database& connection) {
        record();
        for (const Entry& run : runs)
            Execute(connection, "INSERT INTO runs(id, job, run, frame) VALUES (?, ?, ?, ?)", run.id,
                run.task.key.job, run.task.key.run, run.task.key.number);
    });
}

void RunTable::SetHandle(const RunId& run, const QString& handle)
{
    m_database.Write([&](SQLite::Database& connection) {
        Execute(connection, "UPDATE runs SET handle = ?2 WHERE id = ?1", run, handle);
    });
}

void RunTable::End(const RunId& run, const std::function<void()>& record)
{
    m_database.Write([&](SQLite::Database& connection) {
        record();
        Execute(connection, "DELETE FROM runs WHERE id = ?", run);
    });
}

std::vector<RunTable::Entry> RunTable::All()
{
    return m_database.Read([](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT runs.id, job, runs.run, frame, handle, jobs.id, type, account FROM runs JOIN jobs ON key "
            "= job");
        std::vector<Entry> runs;
        while (query.executeStep()) {
            Entry run;
            run.id = Text(query.getColumn(0));
            run.task.key
                = {query.getColumn(1).getInt64(), query.getColumn(3).getInt(), query.getColumn(2).getInt()};
            run.handle = Text(query.getColumn(4));
            run.task.jobId = Text(query.getColumn(5));
            run.task.type = Text(query.getColumn(6));
            run.task.account = query.getColumn(7).getInt64();
            runs.push_back(run);
        }
        return runs;
    });
}

} // namespace farm
