#pragma once

#include <QPointer>
#include <QStyledItemDelegate>
#include <QTableWidget>

#include <functional>

/// Shows in the table of local tasks why a task stands still. The window knows only that its stage has failed.
class TaskStatus : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// @return the words for the task with an id; empty to keep the window's words.
    using Words = std::function<QString(const QString& id)>;

    explicit TaskStatus(Words words, QObject* parent = nullptr);

    /// Takes the column over. Call it whenever the main form is shown for a new session, because it may be a new one.
    void BeginSession();

    /// Shows the whole text as a tool tip where the column is too narrow for it.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
        const QModelIndex& index) override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    Words m_words;
    QPointer<QTableWidget> m_table;
};
