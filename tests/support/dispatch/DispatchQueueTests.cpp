#include "support/dispatch/DispatchQueue.h"
#include "tests/WaitUntil.h"

#include <QEventLoop>
#include <QTimer>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <vector>

namespace navrel {
namespace {

using Order = std::vector<int>;

/// Everything that the queue had to do until now is done.
void waitForQueue(const std::shared_ptr<DispatchQueue>& queue) {
    std::atomic<bool> isDone = false;
    queue->async([&isDone] { isDone = true; });
    ASSERT_TRUE(waitUntil([&] { return isDone.load(); }));
}

TEST(MainQueue, runsJobsLaterInOrderOnTheMainThread) {
    const auto queue = DispatchQueue::mainQueue();
    Order order;
    std::thread::id thread;
    queue->async([&] { order.push_back(1); });
    queue->async([&] {
        order.push_back(2);
        thread = std::this_thread::get_id();
    });
    EXPECT_TRUE(order.empty());

    waitForQueue(queue);
    EXPECT_EQ(order, (Order{1, 2}));
    EXPECT_EQ(thread, std::this_thread::get_id());
    EXPECT_TRUE(queue->isCurrentThread());
    EXPECT_EQ(queue->label(), QStringLiteral("main"));
}

TEST(MainQueue, takesJobsFromOtherThreads) {
    bool ranOnMainThread = false;
    std::thread other([&] { DispatchQueue::mainQueue()->async([&] { ranOnMainThread = true; }); });
    other.join();
    EXPECT_TRUE(waitUntil([&] { return ranOnMainThread; }));
}

TEST(MainQueue, runsNoFurtherJobWhileOneSpinsAnEventLoop) {
    const auto queue = DispatchQueue::mainQueue();
    Order order;
    queue->async([&] {
        order.push_back(1);
        queue->async([&] { order.push_back(4); });
        QEventLoop dialog;
        QTimer::singleShot(30, &dialog, &QEventLoop::quit);
        dialog.exec();
        order.push_back(2);
    });
    queue->async([&] { order.push_back(3); });

    EXPECT_TRUE(waitUntil([&] { return order.size() == 4; }));
    EXPECT_EQ(order, (Order{1, 2, 3, 4}));
}

TEST(MainQueue, leavesTheEventLoopItsTurnWhileJobsAddJobs) {
    const auto queue = DispatchQueue::mainQueue();
    bool isTimerDue = false;
    QTimer::singleShot(1, QCoreApplication::instance(), [&] { isTimerDue = true; });
    std::function<void()> again = [&] {
        if (!isTimerDue) {
            queue->async(again);
        }
    };
    queue->async(again);
    EXPECT_TRUE(waitUntil([&] { return isTimerDue; }));
    waitForQueue(queue);
}

TEST(SerialQueue, runsOneJobAtATimeInOrderOnOneOtherThread) {
    const auto queue = DispatchQueue::serialQueue(QStringLiteral("PTExample.notConnectedQueue"));
    EXPECT_EQ(queue->label(), QStringLiteral("PTExample.notConnectedQueue"));
    Order order;
    std::vector<std::thread::id> threads;
    for (int number = 0; number < 100; ++number) {
        queue->async([&, number] {
            order.push_back(number);
            threads.push_back(std::this_thread::get_id());
        });
    }
    waitForQueue(queue);

    ASSERT_EQ(order.size(), 100U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_NE(threads.front(), std::this_thread::get_id());
    EXPECT_EQ(std::count(threads.begin(), threads.end(), threads.front()), 100);
}

TEST(SerialQueue, knowsItsThread) {
    const auto queue = DispatchQueue::serialQueue(QStringLiteral("test"));
    std::promise<bool> inside;
    queue->async([&] { inside.set_value(queue->isCurrentThread()); });
    EXPECT_TRUE(inside.get_future().get());
    EXPECT_FALSE(queue->isCurrentThread());
}

TEST(SerialQueue, runsWhatWaitsBeforeItGoesAway) {
    std::promise<void> didRun;
    auto queue = DispatchQueue::serialQueue(QStringLiteral("test"));
    queue->async([&] { didRun.set_value(); });
    queue.reset();
    EXPECT_EQ(didRun.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
}

TEST(SerialQueue, mayBeLetGoOfByItsOwnJob) {
    std::promise<void> isGone;
    auto queue = DispatchQueue::serialQueue(QStringLiteral("test"));
    queue->setSpecific(&isGone, &isGone,
                       [](void* value) { static_cast<std::promise<void>*>(value)->set_value(); });
    auto* held = new std::shared_ptr<DispatchQueue>(queue);
    queue->async([held] { delete held; });
    queue.reset();
    EXPECT_EQ(isGone.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
}

TEST(SuspendedQueue, holdsJobsBackUntilAsManyResumes) {
    const auto queue = DispatchQueue::serialQueue(QStringLiteral("test"));
    std::atomic<int> count = 0;
    queue->suspend();
    queue->suspend();
    queue->async([&] { ++count; });
    queue->resume();
    waitForQueue(DispatchQueue::mainQueue());
    EXPECT_EQ(count, 0);

    queue->resume();
    EXPECT_TRUE(waitUntil([&] { return count == 1; }));
}

TEST(SuspendedQueue, finishesTheJobThatSuspendsItAndBeginsNoOther) {
    const auto queue = DispatchQueue::mainQueue();
    Order order;
    queue->async([&] {
        queue->suspend();
        order.push_back(1);
    });
    queue->async([&] { order.push_back(2); });
    EXPECT_TRUE(waitUntil([&] { return order.size() == 1; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(order, Order{1});

    queue->resume();
    EXPECT_TRUE(waitUntil([&] { return order.size() == 2; }));
}

TEST(SuspendedQueue, dropsItsJobsUnrunWhenNobodyHoldsIt) {
    const auto held = std::make_shared<int>(0);
    auto queue = DispatchQueue::serialQueue(QStringLiteral("test"));
    queue->suspend();
    queue->async([held] { ++*held; });
    queue.reset();
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(*held, 0);
}

TEST(SuspendedQueueDeathTest, stopsTheProgramWhenResumedTooOften) {
    EXPECT_DEATH(DispatchQueue::mainQueue()->resume(), "suspendCount_ > 0");
}

TEST(QueueSpecific, isFoundInItsQueueAlone) {
    const auto first = DispatchQueue::serialQueue(QStringLiteral("first"));
    const auto second = DispatchQueue::serialQueue(QStringLiteral("second"));
    const char key = 0;
    const char otherKey = 0;
    int value = 5;
    first->setSpecific(&key, &value, nullptr);
    EXPECT_EQ(first->specific(&key), &value);
    EXPECT_EQ(first->specific(&otherKey), nullptr);
    EXPECT_EQ(second->specific(&key), nullptr);
}

void countDestruction(void* value) {
    ++*static_cast<int*>(value);
}

TEST(QueueSpecific, isDestroyedOnceWhenReplacedRemovedOrLeftByItsQueue) {
    auto queue = DispatchQueue::serialQueue(QStringLiteral("test"));
    const char key = 0;
    const char otherKey = 0;
    int replaced = 0;
    int removed = 0;
    int left = 0;
    queue->setSpecific(&key, &replaced, countDestruction);
    queue->setSpecific(&key, &removed, countDestruction);
    EXPECT_EQ(replaced, 1);

    queue->setSpecific(&key, nullptr, countDestruction);
    EXPECT_EQ(removed, 1);
    EXPECT_EQ(queue->specific(&key), nullptr);

    queue->setSpecific(&otherKey, &left, countDestruction);
    queue.reset();
    EXPECT_EQ(left, 1);
    EXPECT_EQ(replaced + removed, 2);
}

TEST(TryPerform, runsAJobOfAnIdleQueueAtOnceAndThoseThatItAdds) {
    const auto queue = DispatchQueue::mainQueue();
    Order order;
    EXPECT_TRUE(queue->tryPerform([&] {
        queue->async([&] { order.push_back(2); });
        order.push_back(1);
    }));
    EXPECT_EQ(order, (Order{1, 2}));
}

TEST(TryPerform, runsNothingWhileAJobRunsOrWaitsOrTheQueueIsSuspended) {
    const auto queue = DispatchQueue::mainQueue();
    const auto runsNow = [&] { return queue->tryPerform([] {}); };
    bool ranInside = true;
    queue->async([&] { ranInside = runsNow(); });
    EXPECT_FALSE(runsNow());
    waitForQueue(queue);
    EXPECT_FALSE(ranInside);

    queue->suspend();
    EXPECT_FALSE(runsNow());
    queue->resume();
    EXPECT_TRUE(runsNow());
}

} // namespace
} // namespace navrel
