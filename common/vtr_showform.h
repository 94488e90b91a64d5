#pragma once

class QWidget;

/// Shows a form. When the form is hidden from inside its own show event, Qt 5 leaves its native window on the screen; this
/// hides that window as well.
/// @return whether the form is still there and visible.
bool VTShowForm(QWidget* pForm);
