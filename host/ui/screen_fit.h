#pragma once

class QSize;
class QWidget;

/// Shrinks a dialog that is larger than its screen. Where its layout does not allow that, its part "wgtBody" scrolls
/// from then on. Smaller dialogs stay as they are.
void FitScreen(QWidget* form, const QSize& room);
