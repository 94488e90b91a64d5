#include "host/mainform/list_hint.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int Margin = 24; // pixels

} // namespace

ListHint::ListHint(QAbstractItemView* list)
    : QWidget(list) // the viewport would scroll it
    , m_list(list)
    , m_heading(new QLabel(this))
    , m_text(new QLabel(this))
    , m_button(new QPushButton(this))
{
    setObjectName(QStringLiteral("wgtHint"));
    m_heading->setObjectName(QStringLiteral("lblHintHeading"));
    m_text->setProperty("role", QStringLiteral("hint"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Margin, 0, Margin, 0);
    column->addStretch();
    for (QLabel* label : {m_heading, m_text}) {
        label->setTextFormat(Qt::PlainText);
        label->setAlignment(Qt::AlignCenter);
        label->setWordWrap(true);
        column->addWidget(label);
    }
    column->addSpacing(Margin / 4);
    column->addWidget(m_button, 0, Qt::AlignCenter);
    column->addStretch();
    hide();

    m_settling.setSingleShot(true);
    m_settling.setInterval(0);
    connect(&m_settling, &QTimer::timeout, this, &ListHint::Update);
    connect(m_button, &QPushButton::clicked, this, &ListHint::ButtonClicked);
    const auto Settle = [this] { m_settling.start(); };
    const QAbstractItemModel* model = list->model();
    connect(model, &QAbstractItemModel::rowsInserted, this, Settle);
    connect(model, &QAbstractItemModel::rowsRemoved, this, Settle);
    connect(model, &QAbstractItemModel::modelReset, this, Settle);
    list->viewport()->installEventFilter(this);
}

void ListHint::SetTexts(const HintTexts& texts)
{
    m_texts = texts;
    Translate();
    m_settling.start();
}

void ListHint::Translate()
{
    const auto Translated
        = [](const char* text) { return text ? QCoreApplication::translate("ListHint", text) : QString(); };
    m_heading->setText(Translated(m_texts.heading));
    m_text->setText(Translated(m_texts.text));
    m_button->setText(Translated(m_texts.button));
    m_button->setVisible(m_texts.button);
}

void ListHint::Update()
{
    setGeometry(m_list->viewport()->geometry());
    const bool isShown = m_texts.heading && m_list->model()->rowCount() == 0;
    // If the button disappeared with the focus, the form's next button would get it.
    if (!isShown && window()->focusWidget() == m_button)
        m_list->setFocus();
    setVisible(isShown);
    if (isVisible())
        raise();
}

void ListHint::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        Translate();
    QWidget::changeEvent(event);
}

/// Only the list's viewport is watched.
bool ListHint::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        m_settling.start();
    return QWidget::eventFilter(watched, event);
}
