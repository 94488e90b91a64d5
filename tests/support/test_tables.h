#pragma once

#include <QString>
#include <QtTest>

inline QString operator""_s(const char* text, std::size_t length)
{
    return QString::fromUtf8(text, int(length));
}

/// How long a test waits for an event; generous, so that a busy machine passes too.
constexpr int Patience = 60000; // ms

/// Data rows for a test function from a table of cases, each of which has a `name`.
template <class Case, std::size_t Count>
void AddRows(const Case (&cases)[Count])
{
    QTest::addColumn<int>("row");
    for (std::size_t i = 0; i < Count; ++i)
        QTest::newRow(cases[i].name) << int(i);
}

/// The case of the current row.
template <class Case, std::size_t Count>
const Case& Row(const Case (&cases)[Count])
{
    QFETCH(int, row);
    return cases[row];
}
