#pragma once

#include <QObject>

struct VTMainForm;

/// Ctrl+Home and Ctrl+End in the tables: the first and the last page of the list instead of the page's first and last
/// cell.
class VTPageKeys final : public QObject
{
    Q_OBJECT

public:
    /// @param form must outlive this object.
    explicit VTPageKeys(const VTMainForm& form);

signals:
    void FirstPageWanted();
    void LastPageWanted();

protected:
    bool eventFilter(QObject* pTable, QEvent* pEvent) override;

private:
    const VTMainForm& m_form;
};
