#include "farm/admin/farm_check.h"

#include <QFileInfo>

namespace farm {

namespace {

constexpr int MostNamed = 20; // faults of the same kind

/// A rule for the records: the query yields a row for each fault, whose values fill the placeholders of the sentence.
struct Rule
{
    const char* sql;
    const char* sentence;
};

constexpr Rule Rules[] = {
    {"SELECT integrity_check FROM pragma_integrity_check WHERE integrity_check <> 'ok'",
        "the database is damaged: %1"},
    {R"(SELECT "table", parent FROM pragma_foreign_key_check GROUP BY 1, 2)",
        "records of the table %1 belong to nothing in the table %2"},
    {"SELECT DISTINCT account FROM (SELECT * FROM "
     "(SELECT account, shift, number >> shift AS block, status, coalesce(project, 0) AS project, type, "
     "business, "
     "ended_at IS NOT NULL AS ended, count(*) AS jobs FROM jobs, count_shifts GROUP BY 1, 2, 3, 4, 5, 6, 7, "
     "8 "
     "UNION ALL SELECT account, shift, block, status, project, type, business, ended, jobs FROM job_counts) "
     "GROUP BY account, shift, block, status, project, type, business, ended, jobs HAVING count(*) <> 2)",
        "the kept counts of the jobs of account %1 are wrong"},
    {"SELECT id FROM jobs LEFT JOIN job_sums ON job = jobs.key WHERE "
     "(status <> 5 AND frames IS NOT (SELECT count(*) FROM frames WHERE job = jobs.key)) OR "
     "(status <> 5 AND finished IS NOT (SELECT count(finished_at) FROM frames WHERE job = jobs.key)) OR "
     "cost IS NOT (SELECT coalesce(sum(amount), 0) FROM charges WHERE job = jobs.key)",
        "the kept sums of job %1 are wrong"},
    {"SELECT id FROM jobs WHERE status <> 5 AND NOT EXISTS (SELECT 1 FROM frames WHERE job = jobs.key)",
        "job %1 has no frames"},
};

void Check(SQLite::Database& connection, const Rule& rule, QStringList& faults)
{
    SQLite::Statement rows(connection, rule.sql);
    for (int count = 0; count < MostNamed && rows.executeStep(); ++count) {
        QString sentence = QString::fromLatin1(rule.sentence);
        for (int column = 0; column < rows.getColumnCount(); ++column)
            sentence = sentence.arg(Text(rows.getColumn(column)));
        faults.append(sentence);
    }
}

/// @param sql yields the path of each file in the data folder, and its size.
void CheckFiles(SQLite::Database& connection, const QDir& folder, const char* sql, QStringList& faults)
{
    SQLite::Statement rows(connection, sql);
    for (int count = 0; count < MostNamed && rows.executeStep();) {
        const QFileInfo file(folder, Text(rows.getColumn(0)));
        if (file.size() == rows.getColumn(1).getInt64() && file.isFile())
            continue;
        faults.append(QStringLiteral("the file %1 is missing or has another size than recorded")
                          .arg(folder.relativeFilePath(file.filePath())));
        ++count;
    }
}

} // namespace

QStringList FindFaults(SQLite::Database& connection, const QDir& dataFolder)
{
    const SQLite::Transaction moment(connection);
    QStringList faults;
    for (const Rule& rule : Rules)
        Check(connection, rule, faults);
    CheckFiles(connection, dataFolder,
        "SELECT DISTINCT 'contents/' || substr(checksum, 1, 2) || '/' || checksum, size FROM contents",
        faults);
    CheckFiles(connection, dataFolder,
        "SELECT 'jobs/' || id || '/' || file, size FROM frames JOIN jobs ON jobs.key = job "
        "WHERE file IS NOT NULL AND finished_at IS NOT NULL AND status <> 5",
        faults);
    return faults;
}

} // namespace farm
