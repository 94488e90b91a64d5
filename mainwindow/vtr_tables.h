#pragma once

#include <QPointer>
#include <QStringList>

class QMenu;
struct VTMainForm;

/// The behaviour that the three tables share: check boxes, presses on rows, columns.
class VTTables
{
public:
    /// @param form must outlive this object.
    explicit VTTables(const VTMainForm& form);

    /// Identifiers of a tab's checked rows, top to bottom; empty for a tab without a table.
    QStringList CheckedIds(int nTab) const;

    /// Handles a press on a row of the current tab: the right button checks the row, any other toggles it.
    void Press(int nRow);

    /// Row of the last press; -1 if there was none since the last menu.
    int PressedRow() const { return m_nPressedRow; }

    /// Forgets the last press, so that the next context menu needs another one.
    void ForgetPress() { m_nPressedRow = -1; }

    /// Keeps a tab's rows as they are while the menu is open, so that its entries act on the rows over which it was
    /// opened.
    void Hold(int nTab, const QMenu* pMenu);

    /// Whether refills of a tab's table have to wait for an open menu.
    bool IsHeld(int nTab) const;

    /// Gives every row of the current tab the check state of the select-all box.
    void CheckAll(int nState) const;

    /// Unchecks the select-all box, and with it every row of the current tab.
    void UncheckAll() const;

    /// Gives each table its six columns.
    void SetUpColumns() const;

    /// Spreads a tab's columns evenly over the table's width.
    void SpreadColumns(int nTab) const;

private:
    const VTMainForm& m_form;
    int m_nPressedRow = -1;
    int m_nHeldTab = -1;
    QPointer<const QMenu> m_pMenu;
};
