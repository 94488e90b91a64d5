#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>

/// Tells the user which jobs have arrived. Jobs that arrive at about the same time share one notice, because a second one
/// would take the place of the first before it can be read.
class FinishNotice : public QObject
{
    Q_OBJECT

public:
    /// @param gathering time in ms in which other jobs join the first. @param reading least time in ms between two notices.
    explicit FinishNotice(int gathering = 1000, int reading = 5000, QObject* parent = nullptr);

    /// @param file is the path of the job's latest file. @param count files of the job have arrived.
    void Add(const QString& file, int count);

    /// Forgets what has not been told, which belongs to one account.
    void Clear();

signals:
    /// @param what is the path of a single file, or names the jobs by their folders and tells the number of files.
    void Due(const QString& what);

private:
    void Tell();
    QString Text() const;

    int m_gathering;
    int m_reading;
    QTimer m_timer;
    QString m_file; // the latest
    QStringList m_folders;
    int m_count = 0; // files in all folders
};
