#include "host/rendercore/submit/submit_store.h"

#include "host/rendercore/submit/submit_schema.h"

#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUuid>

#include <utility>

namespace {

using storage::Execute;
using storage::Text;

QString IdOf(const QString& scene, qint64 number)
{
    return QStringLiteral("%1.%2").arg(QFileInfo(scene).completeBaseName()).arg(number);
}

QString ListText(const QJsonArray& list)
{
    return QString::fromUtf8(QJsonDocument(list).toJson(QJsonDocument::Compact));
}

QJsonDocument Json(const SQLite::Column& column)
{
    return QJsonDocument::fromJson(QByteArray::fromStdString(column.getString()));
}

SubmitTask TaskOf(const SQLite::Statement& row)
{
    SubmitTask task;
    task.number = row.getColumn(0).getInt64();
    task.scene = Text(row.getColumn(1));
    task.id = IdOf(task.scene, task.number);
    task.started = Text(row.getColumn(2));
    task.submission = Text(row.getColumn(3));
    task.stage = static_cast<SubmitStage>(row.getColumn(4).getInt());
    task.error = static_cast<SubmitError>(row.getColumn(5).getInt());
    task.message = TaskMessage::FromStored(Text(row.getColumn(6)));
    task.arguments = Json(row.getColumn(7)).array().toVariantList();
    task.goesOnWithout = row.getColumn(8).getInt() != 0;
    task.areArgumentsChecked = row.getColumn(9).getInt() != 0;
    task.refused = Json(row.getColumn(10)).toVariant().toStringList();
    task.isDone = row.getColumn(11).getInt() != 0;
    task.work = SubmitWork::FromJson(Json(row.getColumn(12)).object());
    task.areArgumentsEdited = row.getColumn(13).getInt() != 0;
    task.priority = row.getColumn(14).getInt();
    return task;
}

} // namespace

SubmitStore::SubmitStore(const QString& file, storage::RecoveringDatabase::Replaced onReplaced)
    : m_database(file, SubmitSchema(), std::move(onReplaced))
{
}

SubmitTask SubmitStore::Add(const QString& owner, const QString& scene, int priority)
{
    SubmitTask task;
    task.scene = scene;
    task.priority = priority;
    task.started = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    task.submission = QUuid::createUuid().toString(QUuid::WithoutBraces);
    task.number = m_database.Write([&](SQLite::Database& connection) {
        Execute(connection,
            "INSERT INTO tasks(owner, scene, started, submission, priority) VALUES(?, ?, ?, ?, ?)", owner,
            task.scene, task.started, task.submission, task.priority);
        return static_cast<qint64>(connection.getLastInsertRowid());
    });
    task.id = IdOf(scene, task.number);
    return task;
}

QVector<SubmitTask> SubmitStore::Load(const QString& owner)
{
    return m_database.Read([&owner](SQLite::Database& connection) {
        SQLite::Statement rows(connection,
            "SELECT number, scene, started, submission, stage, error, message, arguments, goes_on_without, "
            "arguments_checked, refused, done, work, arguments_edited, priority FROM tasks WHERE owner = ? "
            "ORDER BY number");
        storage::Bind(rows, owner);
        QVector<SubmitTask> tasks;
        while (rows.executeStep())
            tasks.append(TaskOf(rows));
        return tasks;
    });
}

void SubmitStore::Save(const SubmitTask& task)
{
    m_database.Write([&task](SQLite::Database& connection) {
        Execute(connection,
            "UPDATE tasks SET stage = ?, error = ?, message = ?, arguments = ?, goes_on_without = ?, "
            "arguments_checked = ?, refused = ?, done = ?, arguments_edited = ? WHERE number = ?",
            static_cast<int>(task.stage), static_cast<int>(task.error), task.message.ToStored(),
            ListText(QJsonArray::fromVariantList(task.arguments)), task.goesOnWithout ? 1 : 0,
            task.areArgumentsChecked ? 1 : 0, ListText(QJsonArray::fromStringList(task.refused)),
            task.isDone ? 1 : 0, task.areArgumentsEdited ? 1 : 0, static_cast<std::int64_t>(task.number));
    });
}

void SubmitStore::SaveAll(const QVector<const SubmitTask*>& tasks)
{
    m_database.Write([this, &tasks](SQLite::Database&) {
        for (const SubmitTask* task : tasks)
            Save(*task);
    });
}

void SubmitStore::SaveWork(const SubmitTask& task)
{
    const QByteArray work = QJsonDocument(task.work.ToJson()).toJson(QJsonDocument::Compact);
    m_database.Write([this, &task, &work](SQLite::Database& connection) {
        Save(task);
        Execute(connection, "UPDATE tasks SET work = ? WHERE number = ?", work.toStdString(),
            static_cast<std::int64_t>(task.number));
    });
}

void SubmitStore::Remove(const QVector<qint64>& numbers)
{
    m_database.Write([&numbers](SQLite::Database& connection) {
        for (const qint64 number : numbers)
            Execute(connection, "DELETE FROM tasks WHERE number = ?", static_cast<std::int64_t>(number));
    });
}

QSet<qint64> SubmitStore::Numbers()
{
    return m_database.Read([](SQLite::Database& connection) {
        SQLite::Statement rows(connection, "SELECT number FROM tasks");
        QSet<qint64> numbers;
        while (rows.executeStep())
            numbers.insert(static_cast<qint64>(rows.getColumn(0).getInt64()));
        return numbers;
    });
}
