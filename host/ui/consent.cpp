#include "host/ui/consent.h"

#include "host/ui/skins.h"
#include "vtr_messagboxinterface.h"
#include "vtr_uiloaderinterface.h"

#include <QCoreApplication>

bool AskForConsent(
    VTMessagboxInterface* messageBox, VTUiLoaderInterface* loader, const ConsentQuestion& question)
{
    const QString cancel = QStringLiteral("btnMessageBox_1");
    const QString agree = QStringLiteral("btnMessageBox_2");
    // Without a list, the question stands in the detail, where its lines stay apart.
    const bool hasList = !question.list.isEmpty();
    const QString pressed = messageBox->ShowMessage(VTMessagboxInterface::Question, question.title,
        hasList ? question.text : QString(), Skins::MainIcon(loader->GetSkin()),
        hasList ? question.list : question.text,
        {{cancel, QCoreApplication::translate("Consent", "Cancel")}, {agree, question.consent}}, hasList);
    return pressed == agree;
}
