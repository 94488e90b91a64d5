#pragma once

#include <QCoreApplication>

struct VTMainForm;

/// The translated texts of the main form.
class VTCaptions
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    /// Sets every caption, tool tip, tab title and column header in the current language.
    static void Retranslate(const VTMainForm& form);

private:
    static void SetLabels(const VTMainForm& form);
    static void SetButtons(const VTMainForm& form);
    static void SetToolTips(const VTMainForm& form);
    static void SetTabs(const VTMainForm& form);
};
