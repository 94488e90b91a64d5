#pragma once

#include "common/vtr_formwidgets.h"

#include <QPointer>

class QDialog;

/// The form of a dialog controller, with its window flags, skin and widgets.
///
/// The form is not owned and may be deleted before its controller; `Form()` is null then.
class VTDialogForm
{
public:
    VTDialogForm(QWidget* pForm, const QString& strKey);

    QWidget* Form() const { return m_pForm; }
    /// The form as a dialog; null when it is another kind of widget or deleted.
    QDialog* Dialog() const;

    /// Makes the form a frameless, fixed-size dialog window.
    void SetDialogFlags() const;

    /// Restyles the form for a skin and gives it the skin's icon.
    void ApplySkin(const QString& strSkin) const;

    /// Runs the form as a modal dialog until it closes. Does nothing when the form is not a dialog or is open already.
    /// The caller itself may have been deleted when this returns.
    void Exec() const;
    void Close() const;
    void CloseIfOpen() const;

    template <typename Widget>
    Widget* Find(const QString& strName) const
    {
        return VTFindWidget<Widget>(m_pForm, m_strKey, strName);
    }

private:
    QPointer<QWidget> m_pForm;
    QString m_strKey;
};
