#include "farm/admin/table.h"

#include <QRegularExpression>

#include <cstdio>
#include <utility>

namespace farm {

namespace {

QString WithoutControls(QString text)
{
    for (QChar& letter : text) {
        if (letter.category() == QChar::Other_Control || letter.category() == QChar::Other_Format)
            letter = QChar::ReplacementCharacter;
    }
    return text;
}

QString CsvField(const QString& text)
{
    static const QRegularExpression formula(QStringLiteral("\\A[=+@]|\\A-(?![0-9.]+\\z)"));
    static const QRegularExpression special(QStringLiteral("[\",]"));
    QString field = text.contains(formula) ? QLatin1Char('\'') + text : text;
    if (!field.contains(special))
        return field;
    field.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + field + QLatin1Char('"');
}

} // namespace

Table::Table(std::vector<Column> columns, bool isCsv)
    : m_columns(std::move(columns))
    , m_isCsv(isCsv)
{
    QStringList names;
    for (const Column& column : m_columns)
        names.append(QLatin1String(column.name));
    Write(names);
}

void Table::Write(const QStringList& row) const
{
    QString line;
    for (int index = 0; index < row.size(); ++index) {
        const QString text = WithoutControls(row.at(index));
        const bool isLast = index + 1 == row.size();
        if (m_isCsv)
            line += CsvField(text) + (isLast ? QString() : QStringLiteral(","));
        else
            line += isLast
                ? text
                : text.leftJustified(m_columns.at(std::size_t(index)).width) + QStringLiteral("  ");
    }
    std::printf("%s%s", line.toUtf8().constData(), m_isCsv ? "\r\n" : "\n");
}

} // namespace farm
