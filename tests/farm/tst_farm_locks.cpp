#include "storage/queued_mutex.h"
#include "tests/support/test_tables.h"
#include "tests/support/waiting.h"

#include <thread>
#include <vector>

/// The lock by which threads take turns at the database.
class LocksTest : public QObject
{
    Q_OBJECT

private slots:
    void ThreadsGetItInTheOrderInWhichTheyAsk()
    {
        storage::QueuedMutex mutex;
        QVector<int> order;
        std::vector<std::thread> threads;
        mutex.lock();
        mutex.lock(); // again on the same thread
        for (int number = 0; number < 3; ++number) {
            threads.emplace_back([&mutex, &order, number] {
                const std::lock_guard<storage::QueuedMutex> lock(mutex);
                order.append(number);
            });
            EVENTUALLY_COMPARE(mutex.Waiting(), number + 1);
        }
        mutex.unlock();
        QCOMPARE(mutex.Waiting(), 3);
        mutex.unlock();
        mutex.lock(); // at once, but after those that have asked before
        order.append(3);
        mutex.unlock();
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(order, QVector<int>({0, 1, 2, 3}));
        QCOMPARE(mutex.Waiting(), 0);
    }
};

QTEST_GUILESS_MAIN(LocksTest)
#include "tst_farm_locks.moc"
