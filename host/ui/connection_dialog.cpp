#include "host/ui/connection_dialog.h"

#include <QDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

ConnectionDialog::ConnectionDialog(VTUiLoaderInterface* loader, QObject* parent)
    : QObject(parent)
    , m_form(loader, QStringLiteral("com.vtr.connection"))
    , m_state(m_form.Find<QLabel>("lblState"))
    , m_server(m_form.Find<QLabel>("lblServer"))
    , m_history(m_form.Find<QPlainTextEdit>("txtHistory"))
{
    const auto* dialog = m_form.Find<QPushButton>("btnOk")->window();
    for (const char* name : {"btnOk", "btnClose"})
        connect(m_form.Find<QPushButton>(name), &QPushButton::clicked, dialog, &QWidget::close);
    connect(m_form.Find<QPushButton>("btnTryAgain"), &QPushButton::clicked, this,
        &ConnectionDialog::TryAgainRequested);
}

void ConnectionDialog::SetTexts(const QString& state, const QString& server, const QString& history)
{
    m_state->setText(state);
    m_server->setText(
        server.isEmpty() ? tr("Server: the farm on this computer") : tr("Server: %1").arg(server));
    const QString shown = history.isEmpty() ? tr("Nothing has failed in this session.") : history;
    // A new text would scroll back to its beginning and lose the selection.
    if (m_history->toPlainText() != shown)
        m_history->setPlainText(shown);
}
