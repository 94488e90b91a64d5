#pragma once

#include <QString>

class QWidget;

/// Says in words what a list of jobs is limited to, such as "Job Status: Running, Job Name: water".
///
/// @param searchForm the search dialog's form, whose captions and choices are the words; null for none.
/// @param conditions of the request: a JSON object, or an empty text.
/// @param group the name of the group that was chosen last.
/// @return empty when there are no conditions.
QString FilterText(const QWidget* searchForm, const QString& conditions, const QString& group);
