#pragma once

#include <QPointer>
#include <QVector>
#include <QWidget>

class QDialog;
class VTUiLoaderInterface;

/// The five forms of the client as the loader builds them; owned, and scheduled for deletion with this
/// object, unless the loader has given one a parent.
///
/// A form that the loader does not have is logged and replaced by an empty one, so none is null at first. The host may
/// destroy a form at any time.
class VTForms
{
public:
    explicit VTForms(VTUiLoaderInterface* pUiLoader);
    ~VTForms();
    VTForms(const VTForms&) = delete;
    VTForms& operator=(const VTForms&) = delete;

    /// Those of the forms that are there and go with this object.
    QVector<QWidget*> Owned() const;

    // In the order in which they are loaded.
    QPointer<QWidget> pMain;
    QPointer<QWidget> pSetArgument;
    QPointer<QWidget> pSetParent;
    QPointer<QWidget> pSearch;
    QPointer<QDialog> pInput;
};
