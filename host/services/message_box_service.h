#pragma once

#include "host/services/service_base.h"
#include "vtr_messagboxinterface.h"

class VTUiLoaderInterface;

/// Shows message boxes on the form "com.vtr.messagebox", in the current skin. Their texts are plain, never markup.
class MessageBoxService : public ServiceBase<VTMessagboxInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTMessagboxInterface)

public:
    /// @param loader must outlive the boxes.
    explicit MessageBoxService(VTUiLoaderInterface* loader, QObject* parent = nullptr);

    /// Enter presses the button with the focus. At first that is a question's button with the lowest number in its name,
    /// which refuses, and any other message's button with the highest. Without `buttons` there is one, "btnMessageBox_1".
    /// @return the name of the pressed button; empty when the box was closed otherwise.
    QString ShowMessage(int kind, const QString& title, const QString& text, const QIcon& icon,
        const QString& detail, const QVariantHash& buttons, bool list) override;

private:
    VTUiLoaderInterface* m_loader;
};
