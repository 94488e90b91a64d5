#include "host/frames/priority_field.h"

#include "host/farmclient/farm_numbers.h"

#include <QEvent>
#include <QSignalBlocker>
#include <QSpinBox>

namespace {

constexpr int SettlingTime = 500; // ms; a held key changes the field many times a second

} // namespace

PriorityField::PriorityField(QSpinBox* field, QObject* parent)
    : QObject(parent)
    , m_field(field)
{
    field->setRange(FarmNumbers::LowestPriority, FarmNumbers::HighestPriority);
    field->setEnabled(false);
    field->installEventFilter(this);
    m_settled.setSingleShot(true);
    m_settled.setInterval(SettlingTime);
    connect(&m_settled, &QTimer::timeout, this, &PriorityField::Send);
    connect(field, qOverload<int>(&QSpinBox::valueChanged), &m_settled, qOverload<>(&QTimer::start));
}

void PriorityField::Clear()
{
    m_settled.stop();
    m_known.reset();
    m_sent.reset();
    m_field->setEnabled(false);
    Set(0);
}

void PriorityField::Show(int priority)
{
    if (m_sent || m_settled.isActive())
        return;
    m_field->setEnabled(true);
    // A value that is being typed stays until the farm reports another priority.
    if (m_known != priority)
        Set(priority);
    m_known = priority;
}

void PriorityField::Set(int priority)
{
    const QSignalBlocker blocker(m_field);
    m_field->setValue(priority);
}

void PriorityField::Flush()
{
    if (!m_field->isEnabled())
        return;
    m_field->interpretText();
    if (m_settled.isActive())
        Send();
}

void PriorityField::Send()
{
    m_settled.stop();
    const int priority = m_field->value();
    if (m_sent || m_known == priority)
        return;
    m_sent = priority;
    emit Chosen(priority);
}

void PriorityField::HandleAnswer(bool isTaken)
{
    if (!m_sent)
        return;
    if (isTaken)
        m_known = m_sent;
    m_sent.reset();
    if (m_settled.isActive())
        return;
    if (isTaken)
        Send();
    else
        Set(m_known.value_or(0));
}

/// The wheel must not change the field when somebody scrolls past it.
bool PriorityField::eventFilter(QObject* /*watched*/, QEvent* event)
{
    if (event->type() != QEvent::Wheel || m_field->hasFocus())
        return false;
    event->ignore();
    return true;
}
