#pragma once

#include "tests/support/test_tables.h"

#include <QTimer>

#include <functional>

// Wait for an event with the one generous limit of all tests.
#define EVENTUALLY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, Patience)
#define EVENTUALLY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, Patience)

/// Does something once, as soon as it can be done, also while a modal dialog runs its own event loop.
class Soon
{
public:
    /// @param step is called until it returns true. It may open another dialog.
    explicit Soon(std::function<bool()> step)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, step = std::move(step)] {
            m_timer.stop();
            m_done = step();
            if (!m_done)
                m_timer.start();
        });
        m_timer.start(10);
    }

    bool IsDone() const { return m_done; }

private:
    QTimer m_timer;
    bool m_done = false;
};
