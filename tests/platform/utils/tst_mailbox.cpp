// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"

#include <utils/CMailbox.h>

#include <atomic>
#include <thread>
#include <vector>

using utils::CMailbox;

/// Tasks that cross threads, and mailboxes that go away.
class MailboxTest : public QObject
{
    Q_OBJECT

private slots:
    void tasksOfManyThreadsRunOnceEachAndThoseOfAThreadInOrder()
    {
        constexpr int threads = 4;
        constexpr int each = 2000;
        CMailbox mailbox;
        std::vector<std::vector<int>> ran(threads);
        bool elsewhere = false;
        std::vector<std::thread> senders;
        for (int sender = 0; sender < threads; ++sender) {
            senders.emplace_back([&, sender, address = mailbox.address()] {
                for (int i = 0; i < each; ++i) {
                    address.post([&, sender, i] {
                        ran[std::size_t(sender)].push_back(i);
                        elsewhere = elsewhere || QThread::currentThread() != mailbox.thread();
                    });
                }
            });
        }
        for (std::thread& sender : senders) {
            sender.join();
        }
        QCoreApplication::processEvents();
        for (const std::vector<int>& numbers : ran) {
            QCOMPARE(numbers.size(), std::size_t(each));
            QVERIFY(std::is_sorted(numbers.begin(), numbers.end()));
        }
        QVERIFY(!elsewhere);
    }

    void whatIsLeftOrComesLaterIsDroppedAndFreed()
    {
        const auto held = std::make_shared<int>();
        bool ran = false;
        auto mailbox = std::make_unique<CMailbox>();
        const CMailbox::Address address = mailbox->address();
        address.post([&ran, held] { ran = true; });
        mailbox.reset();
        address.post([&ran, held] { ran = true; });
        QCoreApplication::processEvents();
        QVERIFY(!ran);
        QCOMPARE(held.use_count(), 1L);
    }

    void whatADroppedTaskHoldsMayPostAsItGoes()
    {
        auto mailbox = std::make_unique<CMailbox>();
        const CMailbox::Address address = mailbox->address();
        bool freed = false;
        const auto free = [&freed, address](int* number) {
            delete number;
            address.post([] {});
            freed = true;
        };
        address.post([held = std::shared_ptr<int>(new int, free)] { Q_UNUSED(held) });
        mailbox.reset();
        QVERIFY(freed);
    }

    void aTaskMayDestroyTheMailboxAndThoseBehindItAreDropped()
    {
        auto mailbox = std::make_unique<CMailbox>();
        bool ran = false;
        mailbox->address().post([&] { mailbox.reset(); });
        mailbox->address().post([&] { ran = true; });
        QCoreApplication::processEvents();
        QVERIFY(!mailbox);
        QVERIFY(!ran);
    }

    void aTaskThatRunsAnEventLoopDoesNotHoldUpTheNext()
    {
        CMailbox mailbox;
        QEventLoop loop;
        bool returned = false;
        mailbox.address().post([&] {
            // As a message box does, which posts events of its own.
            QMetaObject::invokeMethod(&loop, [] {}, Qt::QueuedConnection);
            loop.exec();
            returned = true;
        });
        mailbox.address().post([&] { loop.quit(); });
        QTRY_VERIFY(returned);
    }

    void aMailboxMayGoWhileOthersPost()
    {
        for (int round = 0; round < 200; ++round) {
            auto mailbox = std::make_unique<CMailbox>();
            const auto held = std::make_shared<int>();
            std::atomic<int> posted{0};
            std::thread sender([&, address = mailbox->address()] {
                for (int i = 0; i < 200; ++i) {
                    address.post([held] { Q_UNUSED(held) });
                    ++posted;
                }
            });
            while (posted < 20) {
                QCoreApplication::processEvents();
            }
            mailbox.reset();
            sender.join();
            QCOMPARE(held.use_count(), 1L);
        }
    }
};

TEST_WITHOUT_WIDGETS(MailboxTest)
#include "tst_mailbox.moc"
