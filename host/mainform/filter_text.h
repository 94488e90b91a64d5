#pragma once

#include <QString>

class QWidget;

/// Describes the filter of a list of jobs in words, such as "Job Status: Running, Job Name: water".
///
/// @param searchForm the search dialog's form, whose captions and choices are the words; null for none.
/// @param conditions are those of the request: a JSON object, or an empty text.
/// @param group the name of the group that was chosen last.
/// @return empty when there are no conditions.
QString FilterText(const QWidget* searchForm, const QString& conditions, const QString& group);
