#include "farm/jobs/name_searches.h"

#include <QStringList>

#include <algorithm>

namespace farm {

namespace {

constexpr std::size_t MostKept = 64; // results; one takes 125 kB for a million jobs
constexpr std::size_t FewCandidates = 1000;
constexpr std::size_t MostAlone = 20'000; // jobs to check one by one; beyond it, reading all jobs is quicker
// The index of names consists of these.
constexpr int SequenceLength = 3; // characters
constexpr int MostSequences = 32; // looked up for a long text; more would exclude few further names

std::string KeyOf(const JobFilter& filter)
{
    std::string key = filter.where;
    for (const std::string& text : filter.texts)
        key += '\0' + text;
    return key;
}

/// A query to the index of names that finds at least the names with this text; empty when the index cannot help.
QString IndexQuery(const QString& text)
{
    const QVector<uint> characters = text.toUcs4();
    if (characters.size() < SequenceLength || characters.contains(0))
        return {};
    QStringList sequences;
    for (int first = 0; first + SequenceLength <= std::min(characters.size(), MostSequences); ++first) {
        QString sequence = QString::fromUcs4(characters.constData() + first, SequenceLength);
        sequences.append(
            QLatin1Char('"') + sequence.replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"'));
    }
    sequences.removeDuplicates();
    return sequences.join(QLatin1String(" AND "));
}

/// The numbers of the account's jobs that the index of names finds, at most `MostAlone` + 1 of them.
std::vector<std::int64_t> Candidates(
    SQLite::Database& connection, std::int64_t account, const QString& indexQuery)
{
    SQLite::Statement query(connection,
        "SELECT rowid & 4294967295 FROM job_names WHERE job_names MATCH ? AND rowid BETWEEN ? AND ? LIMIT ?");
    Bind(query, indexQuery, account << 32, (account << 32) + 0xffffffff, MostAlone + 1);
    std::vector<std::int64_t> numbers;
    while (query.executeStep())
        numbers.push_back(query.getColumn(0).getInt64());
    return numbers;
}

NumberSet SearchThroughAll(SQLite::Database& connection, const JobFilter& filter)
{
    // NOT INDEXED reads the jobs in the order in which they lie in the file.
    SQLite::Statement query(connection, "SELECT number FROM jobs NOT INDEXED WHERE " + filter.where);
    filter.BindTo(query);
    NumberSet found;
    while (query.executeStep())
        found.Insert(query.getColumn(0).getInt64());
    return found;
}

NumberSet SearchAmong(
    SQLite::Database& connection, const std::vector<std::int64_t>& numbers, const JobFilter& filter)
{
    SQLite::Statement query(connection, "SELECT 1 FROM jobs WHERE " + filter.where + " AND number = ?");
    filter.BindTo(query);
    NumberSet found;
    for (const std::int64_t number : numbers) {
        query.reset();
        query.bind(int(filter.texts.size()) + 1, number);
        if (query.executeStep())
            found.Insert(number);
    }
    return found;
}

std::int64_t LastChange(SQLite::Database& connection)
{
    return connection.execAndGet("SELECT coalesce(max(place), 0) FROM job_changes").getInt64();
}

/// Whether the database still has all changes after this one.
bool HasChangesSince(SQLite::Database& connection, std::int64_t change)
{
    SQLite::Statement query(connection, "SELECT coalesce(min(place), 0) <= ? + 1 FROM job_changes");
    Bind(query, change);
    return change >= 0 && query.executeStep() && query.getColumn(0).getInt() != 0;
}

void Refresh(SQLite::Database& connection, std::int64_t account, const JobFilter& filter,
    std::int64_t lastChange, NumberSet& numbers)
{
    SQLite::Statement query(connection,
        "SELECT changed, EXISTS (SELECT 1 FROM jobs WHERE " + filter.where
            + " AND number = changed) FROM (SELECT DISTINCT number AS changed FROM job_changes WHERE place > "
            + std::to_string(lastChange) + " AND account = " + std::to_string(account) + ")");
    filter.BindTo(query);
    while (query.executeStep()) {
        const std::int64_t number = query.getColumn(0).getInt64();
        if (query.getColumn(1).getInt() != 0)
            numbers.Insert(number);
        else
            numbers.Remove(number);
    }
}

} // namespace

NameSearches::Found NameSearches::Find(SQLite::Database& connection, std::int64_t account,
    const JobConditions& conditions, std::int64_t offset, std::int64_t count)
{
    const JobFilter filter = FilterFor(account, conditions);
    const std::string key = KeyOf(filter);
    const std::shared_ptr<Search> search = Take(key);
    const std::lock_guard lock(search->mutex);
    const std::int64_t lastChange = LastChange(connection);
    if (HasChangesSince(connection, search->lastChange)) {
        if (lastChange > search->lastChange)
            Refresh(connection, account, filter, search->lastChange, search->numbers);
    } else {
        const QString indexQuery = IndexQuery(conditions.nameContains.toCaseFolded());
        const auto candidates = indexQuery.isEmpty() ? std::vector<std::int64_t>()
                                                     : Candidates(connection, account, indexQuery);
        const bool hasFew = !indexQuery.isEmpty() && candidates.size() <= MostAlone;
        search->numbers
            = hasFew ? SearchAmong(connection, candidates, filter) : SearchThroughAll(connection, filter);
        search->isExpensive = !hasFew || candidates.size() > FewCandidates;
    }
    // Another connection may have seen a later change already.
    search->lastChange = std::max(search->lastChange, lastChange);
    if (!search->isExpensive)
        Forget(key);
    return {search->numbers.Size(), search->numbers.Numbers(offset, count)};
}

std::shared_ptr<NameSearches::Search> NameSearches::Take(const std::string& key)
{
    const std::lock_guard lock(m_mutex);
    const auto kept
        = std::find_if(m_kept.begin(), m_kept.end(), [&key](const auto& one) { return one.first == key; });
    if (kept != m_kept.end())
        m_kept.splice(m_kept.begin(), m_kept, kept);
    else
        m_kept.emplace_front(key, std::make_shared<Search>());
    if (m_kept.size() > MostKept)
        m_kept.pop_back();
    return m_kept.front().second;
}

void NameSearches::Forget(const std::string& key)
{
    const std::lock_guard lock(m_mutex);
    m_kept.remove_if([&key](const auto& one) { return one.first == key; });
}

} // namespace farm
