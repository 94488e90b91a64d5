#pragma once

#include "vtr_baseinterface.h"

#include <QIcon>
#include <QObject>
#include <QString>
#include <QVariantHash>

/// Modal message boxes in the current skin.
class VTMessagboxInterface : public QObject, public VTBaseInterface
{
    Q_OBJECT
    Q_INTERFACES(VTBaseInterface)

public:
    using QObject::QObject;

    // The kinds of messages, for `nKind`.
    static constexpr int Notice = 2;
    static constexpr int Question = 4;

    /// Shows a message and waits until it is closed. All texts are plain text, never markup.
    /// @param nKind `Notice` or `Question`.
    /// @param mapButtons object name ("btnMessageBox_1", "btnMessageBox_2") to translated caption.
    /// @param bFlag true when the detail is a list or notice of its own, false when it is the question itself.
    /// @return object name of the button that was pressed; empty if the box was closed in another way.
    virtual QString ShowMessage(int nKind, const QString& strTitle, const QString& strText, const QIcon& icon,
        const QString& strDetail, const QVariantHash& mapButtons, bool bFlag)
        = 0;
};

Q_DECLARE_INTERFACE(VTMessagboxInterface, "com.vtr.messagebox")
