#pragma once

#include <QCoreApplication>

struct VTMainForm;

/// The action buttons above the tables.
class VTToolbar
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    /// @param form must outlive this object.
    explicit VTToolbar(const VTMainForm& form);

    /// Shows the buttons that a tab has, each in its place.
    void ShowFor(int nTab) const;

    /// Moves the delete button to its place on a tab.
    void PlaceDelete(int nTab) const;

private:
    const VTMainForm& m_form;
};
