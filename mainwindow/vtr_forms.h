#pragma once

#include <QPointer>
#include <QVector>
#include <QWidget>

class QDialog;
class VTUiLoaderInterface;

/// The client's five forms, built by the loader. They are hidden and scheduled for deletion when this object is
/// destroyed, except those to which the loader has given a parent: they are only hidden.
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

    void Hide() const;

    /// The forms that still exist and are scheduled for deletion when this object is destroyed.
    QVector<QWidget*> Owned() const;

    // In the order in which they are loaded.
    QPointer<QWidget> pMain;
    QPointer<QWidget> pSetArgument;
    QPointer<QWidget> pSetParent;
    QPointer<QWidget> pSearch;
    QPointer<QDialog> pInput;
};
