#pragma once

#include "host/services/service_base.h"
#include "vtr_messagboxinterface.h"

#include <QPointer>

class VTUiLoaderInterface;

/// Shows message boxes on the form "com.vtr.messagebox", in the current skin. Their texts are plain, never markup.
class MessageBoxService : public ServiceBase<VTMessagboxInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTMessagboxInterface)

public:
    /// @param loader must outlive the boxes.
    explicit MessageBoxService(VTUiLoaderInterface* loader, QObject* parent = nullptr);

    /// The button with the focus is pressed by Enter: at first, that of a question (kind 4) whose name has the lowest
    /// number, which refuses, and that of any other message whose name has the highest. Without `buttons` there is one,
    /// "btnMessageBox_1".
    /// @return the name of the pressed button; empty when the box was closed otherwise.
    QString ShowMessage(int kind, const QString& title, const QString& text, const QIcon& icon,
        const QString& detail, const QVariantHash& buttons, bool list) override;

private:
    VTUiLoaderInterface* m_loader;
};
