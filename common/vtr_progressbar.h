#pragma once

#include <QProgressBar>

/// A progress bar that takes its picture from a cache which all bars share. Drawing rounded frames costs more than anything
/// else on a row, and the bars of a table have few looks.
///
/// It has no meta-object of its own, so style sheets and services find a plain `QProgressBar`.
class VTProgressBar : public QProgressBar
{
protected:
    void paintEvent(QPaintEvent* pEvent) override;
};
