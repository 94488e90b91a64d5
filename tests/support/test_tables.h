#pragma once

#include <QString>
#include <QtTest>

#include <tuple>

inline QString operator""_s(const char* text, std::size_t length)
{
    return QString::fromUtf8(text, int(length));
}

/// How long a test waits for an event; generous, so that a busy machine passes too.
constexpr int Patience = 180000; // ms

template <class Case>
const char* NameOf(const Case& row)
{
    return row.name;
}
template <class... Values>
const char* NameOf(const std::tuple<const char*, Values...>& row)
{
    return std::get<0>(row);
}

/// Data rows for a test function from a table of cases: structures with a `name`, or tuples that begin with one.
template <class Case, std::size_t Count>
void AddRows(const Case (&cases)[Count])
{
    QTest::addColumn<int>("row");
    for (std::size_t i = 0; i < Count; ++i)
        QTest::newRow(NameOf(cases[i])) << int(i);
}

/// The case of the current row.
template <class Case, std::size_t Count>
const Case& Row(const Case (&cases)[Count])
{
    QFETCH(int, row);
    return cases[row];
}
