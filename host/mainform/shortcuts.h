#pragma once

#include <QHash>
#include <QKeySequence>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QWidget>

class QTableWidget;

/// The keys of the main form: Ctrl+F searches, F5 refreshes, Delete deletes the checked rows, Ctrl+O submits,
/// Ctrl+G opens the menu of groups, and Ctrl+C copies the texts of the current row. Tool tips of buttons name their keys.
class Shortcuts : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Gives the main form its keys. Call it whenever the form is shown for a new session, because it may be a new one.
    void BeginSession();

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void RefreshRequested();

private:
    void AddToButton(const char* name, const QKeySequence& key);
    void AddListKeys(QWidget* widget);

    QPointer<QWidget> m_form;
    QHash<const QObject*, QKeySequence> m_keys; // keys of buttons
    QSet<const QObject*> m_controls;            // controls that belong to the lists
};

/// @return the texts of a table's row, separated by tabs; empty where there is no such row.
QString TextOfRow(const QTableWidget* table, int row);
