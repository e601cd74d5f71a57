// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <QAV/CCallbackGate.h>

#include <QThread>

#include <atomic>
#include <thread>

class CallbackGateTest : public QObject
{
    Q_OBJECT

private slots:
    void anOpenGateLetsACallbackInWithItsArguments()
    {
        QAV::CCallbackGate gate;
        QStringList calls;
        const auto callback = gate.wrap(boost::function<void(const QString&, int)>(
            [&](const QString& text, int number) { calls << text + QString::number(number); }));
        callback("a", 1);
        callback("b", 2);
        QCOMPARE(calls, QStringList({"a1", "b2"}));
    }

    void aClosedGateDropsTheCall()
    {
        QAV::CCallbackGate gate;
        int calls = 0;
        const auto callback = gate.wrap(boost::function<void()>([&] { ++calls; }));
        gate.close();
        callback();
        gate.close();
        callback();
        QCOMPARE(calls, 0);
    }

    void aCallbackOutlivesItsGate()
    {
        int calls = 0;
        boost::function<void()> callback;
        {
            const QAV::CCallbackGate gate;
            callback = gate.wrap(boost::function<void()>([&] { ++calls; }));
        }
        callback();
        QCOMPARE(calls, 0);
    }

    void aQueuedCallbackRunsOnTheThreadOfTheGateAfterTheCallHasReturned()
    {
        QAV::CCallbackGate gate;
        QStringList calls;
        bool isOwnThread = true;
        const auto callback =
            gate.queued(boost::function<void(const QString&, int)>([&](const QString& text, int number) {
                isOwnThread = isOwnThread && QThread::currentThread() == thread();
                calls << text + QString::number(number);
            }));
        std::thread service([&] {
            QString text = "a";
            callback(text, 1);
            text = "changed";
            callback("b", 2);
        });
        service.join();
        callback("c", 3);
        QCOMPARE(calls, QStringList());
        QCoreApplication::processEvents();
        QCOMPARE(calls, QStringList({"a1", "b2", "c3"}));
        QVERIFY(isOwnThread);
    }

    void aClosedGateDropsWhatIsQueued()
    {
        int calls = 0;
        boost::function<void()> ofDeadGate;
        QAV::CCallbackGate gate;
        {
            const QAV::CCallbackGate other;
            ofDeadGate = other.queued(boost::function<void()>([&] { ++calls; }));
            ofDeadGate();
        }
        ofDeadGate();
        const auto callback = gate.queued(boost::function<void()>([&] { ++calls; }));
        callback();
        gate.close();
        callback();
        QCoreApplication::processEvents();
        QCOMPARE(calls, 0);
    }

    void aQueuedCallbackMayDestroyTheGate()
    {
        auto gate = std::make_unique<QAV::CCallbackGate>();
        int calls = 0;
        const auto callback = gate->queued(boost::function<void()>([&] {
            ++calls;
            gate.reset();
        }));
        callback();
        callback();
        QCoreApplication::processEvents();
        QCOMPARE(calls, 1);
    }

    void closingWaitsForTheCallbackThatIsInside()
    {
        QAV::CCallbackGate gate;
        std::atomic<bool> inside{false};
        std::atomic<bool> leave{false};
        std::atomic<bool> left{false};
        const auto callback = gate.wrap(boost::function<void()>([&] {
            inside = true;
            while (!leave) {
                std::this_thread::yield();
            }
            left = true;
        }));
        std::thread service(callback);
        while (!inside) {
            std::this_thread::yield();
        }
        std::atomic<bool> closed{false};
        std::thread widget([&] {
            gate.close();
            closed = true;
        });
        const bool closedEarly = closed;
        leave = true;
        widget.join();
        service.join();
        QVERIFY(!closedEarly);
        QVERIFY(left);
    }

    void afterClosingNoThreadIsInside()
    {
        for (int round = 0; round < 200; ++round) {
            auto gate = std::make_unique<QAV::CCallbackGate>();
            // What the callbacks touch dies with the gate, as a widget does.
            auto widget = std::make_unique<std::atomic<int>>(0);
            const auto callback = gate->wrap(boost::function<void()>([alive = widget.get()] { alive->fetch_add(1); }));
            std::atomic<bool> stop{false};
            std::thread service([&] {
                while (!stop) {
                    callback();
                }
            });
            while (widget->load() == 0) {
                std::this_thread::yield();
            }
            gate->close();
            const int seen = widget->load();
            widget->store(-1);
            QVERIFY(seen > 0);
            QCOMPARE(widget->load(), -1);
            widget.reset();
            stop = true;
            service.join();
        }
    }
};

TEST_WITHOUT_WIDGETS(CallbackGateTest)
#include "tst_callback_gate.moc"
