#pragma once

#include "host/ui/skinned_form.h"

class QLabel;
class QPlainTextEdit;

/// Shows the connection and the latest failures, on the form "com.vtr.connection". It follows new texts while it
/// is open.
class ConnectionDialog : public QObject
{
    Q_OBJECT

public:
    explicit ConnectionDialog(VTUiLoaderInterface* loader, QObject* parent = nullptr);

    QWidget* Form() const { return m_form.Form(); }

    /// Returns at once.
    void Open() const { m_form.Open(); }
    void Close() const { Form()->hide(); }

    /// All texts are plain.
    /// @param server empty for the farm on this computer.
    /// @param history may be empty.
    void SetTexts(const QString& state, const QString& server, const QString& history);

signals:
    void TryAgainRequested();

private:
    SkinnedForm m_form;
    QLabel* m_state;
    QLabel* m_server;
    QPlainTextEdit* m_history;
};
