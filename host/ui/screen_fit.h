#pragma once

class QSize;
class QWidget;

/// Makes a dialog that is larger than the room on its screen smaller. Where its layout does not allow that, its part
/// "wgtBody" scrolls from then on. Other dialogs stay as they are.
void FitScreen(QWidget* form, const QSize& room);
