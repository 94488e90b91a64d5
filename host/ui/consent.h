#pragma once

#include <QString>

class VTMessagboxInterface;
class VTUiLoaderInterface;

/// A question that the user agrees to or cancels.
struct ConsentQuestion
{
    QString title;
    QString text;
    QString consent; ///< what the button says that agrees
    QString list {}; ///< what the question is about, a line each; may be empty
};

/// Asks in a message box and waits for the answer. Anything may have changed by then, and the caller may be gone.
/// @return whether the user agrees.
bool AskForConsent(
    VTMessagboxInterface* messageBox, VTUiLoaderInterface* loader, const ConsentQuestion& question);
