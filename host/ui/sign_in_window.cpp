#include "host/ui/sign_in_window.h"

#include "host/ui/message_text.h"
#include "vtr_uiloaderinterface.h"

#include <QEvent>
#include <QFileInfo>
#include <QIcon>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>

namespace {

constexpr int FailureLength = 160;   // characters
constexpr int LongestToolTip = 2000; // characters
constexpr QSize WholeSize(720, 440);
constexpr int LeastHeight = 340;
constexpr int Spacing = 6;
constexpr int LowSpacing = 4;
const QLatin1String LanguagePrefix("vtr_");

} // namespace

SignInWindow::SignInWindow(VTUiLoaderInterface* loader, QObject* parent)
    : QObject(parent)
    , m_form(loader, QStringLiteral("com.vtr.authclient"))
    , m_name(m_form.Find<QLineEdit>("lneName"))
    , m_password(m_form.Find<QLineEdit>("lnePassword"))
    , m_failure(m_form.Find<QLabel>("lblFailure"))
    , m_serverLabel(m_form.Find<QLabel>("lblServer"))
    , m_signIn(m_form.Find<QPushButton>("btnSignIn"))
    , m_language(m_form.Find<QPushButton>("btnLang"))
    , m_loader(loader)
{
    m_serverLabel->installEventFilter(this);
    Form()->installEventFilter(this);
    for (QLineEdit* edit : {m_name, m_password}) {
        connect(edit, &QLineEdit::textChanged, this, &SignInWindow::UpdateButton);
        connect(edit, &QLineEdit::returnPressed, this, &SignInWindow::Request);
    }
    connect(m_signIn, &QPushButton::clicked, this, &SignInWindow::Press);
    connect(m_form.Find<QPushButton>("btnSystemMin"), &QPushButton::clicked, Form(), &QWidget::showMinimized);
    connect(m_form.Find<QPushButton>("btnClose"), &QPushButton::clicked, Form(), &QWidget::close);
    connect(loader, &VTUiLoaderInterface::LanguageChanged, this, &SignInWindow::Retranslate);
    Retranslate();
}

bool SignInWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_serverLabel && event->type() == QEvent::Resize)
        ShowServer();
    else if (watched == Form() && event->type() == QEvent::Show)
        FitScreen();
    return false;
}

/// Hides the dispensable parts where the screen is too small for the whole form.
void SignInWindow::FitScreen()
{
    const QSize room = Form()->screen()->availableSize();
    const bool isNarrow = room.width() < WholeSize.width();
    const bool isLow = room.height() < WholeSize.height();
    auto* brand = m_form.Find<QWidget>("frmBrand");
    brand->setVisible(!isNarrow);
    m_form.Find<QLabel>("lblHint")->setVisible(!isLow);
    auto* fields = m_form.Find<QLayout>("layWgtFields");
    fields->setSpacing(isLow ? LowSpacing : Spacing);
    Form()->setFixedSize(WholeSize.width() - (isNarrow ? brand->minimumWidth() : 0),
        qBound(LeastHeight, room.height(), WholeSize.height()));
}

void SignInWindow::SetServer(const QString& server)
{
    m_server = server;
    ShowServer();
}

void SignInWindow::ShowServer()
{
    const QString text
        = m_server.isEmpty() ? tr("Server: the farm on this computer") : tr("Server: %1").arg(m_server);
    m_serverLabel->setText(
        m_serverLabel->fontMetrics().elidedText(text, Qt::ElideMiddle, m_serverLabel->width()));
    m_serverLabel->setToolTip(text == m_serverLabel->text() ? QString() : PlainToolTip(m_server));
}

void SignInWindow::SetFarm(Farm farm, const QString& reason)
{
    m_farm = farm;
    if (reason.isEmpty())
        Say({});
    else
        Say([reason] { return tr("The farm on this computer does not start: %1").arg(reason); });
    UpdateButton();
}

void SignInWindow::Retranslate()
{
    const QString language = QFileInfo(m_loader->GetLanguage()).completeBaseName().mid(LanguagePrefix.size());
    m_language->setIcon(QIcon(QStringLiteral(":/default/%1_normal.png").arg(language)));
    ShowServer();
    ShowWords();
    UpdateButton();
}

void SignInWindow::SetName(const QString& name)
{
    m_name->setText(name);
    FocusEmptyField();
}

void SignInWindow::FocusEmptyField()
{
    (m_name->text().isEmpty() ? m_name : m_password)->setFocus();
}

void SignInWindow::SetBusy(bool busy)
{
    m_busy = busy;
    m_name->setEnabled(!busy);
    m_password->setEnabled(!busy);
    if (busy)
        Say({});
    UpdateButton();
}

void SignInWindow::ShowFailure(const Words& text)
{
    SetBusy(false);
    Say(text);
    m_password->setFocus();
    m_password->selectAll();
}

void SignInWindow::Say(const Words& words)
{
    m_words = words;
    ShowWords();
}

void SignInWindow::ShowWords()
{
    const QString whole = m_words ? m_words().simplified() : QString();
    const bool isLong = whole.size() > FailureLength;
    m_failure->setText(isLong ? whole.left(FailureLength) + QChar(0x2026) : whole);
    m_failure->setToolTip(isLong ? PlainToolTip(whole.left(LongestToolTip)) : QString());
}

void SignInWindow::Reset()
{
    SetBusy(false);
    Say({});
    m_password->clear();
    // The fields lost the focus while they were disabled.
    FocusEmptyField();
}

void SignInWindow::Press()
{
    if (m_farm == Farm::Failed)
        emit StartRequested();
    else
        Request();
}

void SignInWindow::Request()
{
    if (m_farm == Farm::Ready && m_signIn->isEnabled())
        emit SignInRequested(m_name->text().trimmed(), m_password->text());
    else
        FocusEmptyField();
}

void SignInWindow::UpdateButton()
{
    const bool isTyped = !m_name->text().trimmed().isEmpty() && !m_password->text().isEmpty();
    switch (m_farm) {
    case Farm::Starting:
        m_signIn->setText(tr("Starting the farm…"));
        m_signIn->setEnabled(false);
        break;
    case Farm::Failed:
        m_signIn->setText(tr("Try again"));
        m_signIn->setEnabled(true);
        break;
    default:
        m_signIn->setText(m_busy ? tr("Signing in…") : tr("Sign in"));
        m_signIn->setEnabled(!m_busy && isTyped);
        break;
    }
}
