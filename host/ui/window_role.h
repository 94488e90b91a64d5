#pragma once

/// Makes screen readers announce windows that are plain widgets as windows; Qt takes them for containers within one.
void AnnounceWindows();
