#pragma once

#include <QStringList>

#include <vector>

namespace farm {

/// Writes rows to standard output: in columns for people, or as CSV (RFC 4180) for programs.
class Table
{
public:
    struct Column
    {
        const char* name;
        /// Longer texts push the next column to the right.
        int width;
    };

    /// Writes the names of the columns.
    Table(std::vector<Column> columns, bool isCsv);

    /// Control characters are replaced, since users choose the names of jobs; in CSV, a text that a spreadsheet would
    /// take for a formula gets an apostrophe in front.
    void Write(const QStringList& row) const;

private:
    std::vector<Column> m_columns;
    bool m_isCsv;
};

} // namespace farm
