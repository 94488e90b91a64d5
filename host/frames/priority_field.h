#pragma once

#include <QObject>
#include <QTimer>

#include <optional>

class QSpinBox;

/// The field for a job's priority. It follows the farm's answers, except while the user changes it or the change is on its
/// way.
class PriorityField : public QObject
{
    Q_OBJECT

public:
    explicit PriorityField(QSpinBox* field, QObject* parent = nullptr);

    /// Forgets everything, for another job.
    void Clear();

    /// @param priority as the farm tells it.
    void Show(int priority);

    /// Sends at once what the user has entered.
    void Flush();

    /// The farm has answered a change.
    void HandleAnswer(bool isTaken);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// One change at a time: the next follows HandleAnswer().
    void Chosen(int priority);

private:
    void Set(int priority);
    void Send();

    QSpinBox* m_field;
    QTimer m_settled;           // runs while the user changes the field
    std::optional<int> m_known; // the farm's latest
    std::optional<int> m_sent;  // set while a change is on its way
};
