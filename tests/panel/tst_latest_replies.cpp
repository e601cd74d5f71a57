// SPDX-License-Identifier: Apache-2.0
#include "panel/CLatestReplies.h"
#include "support/TestProgram.h"

#include <thread>

/// Stands where a widget does: notes the replies that its slot is not told to drop.
class Receiver : public QObject
{
    Q_OBJECT

public:
    Receiver() { connect(this, &Receiver::sigReply, this, &Receiver::slotReply); }
    ~Receiver() override { replies.close(); }

    boost::function<void(int)> ask()
    {
        replies.dropOutstanding();
        return replies.wrap(boost::function<void(int)>([this](int reply) { emit sigReply(reply); }));
    }

    QAV::CLatestReplies replies{*this};
    QVector<int> heard;

signals:
    void sigReply(int reply);

private slots:
    void slotReply(int reply)
    {
        if (!replies.isDropped()) {
            heard.append(reply);
        }
    }
};

class LatestRepliesTest : public QObject
{
    Q_OBJECT

private slots:
    void aReplyFromAnotherThreadIsHeard();
    void aReplyThatWaitsWhenTheNextRequestIsSentIsDropped();
    void aReplyThatComesAfterTheNextRequestIsDropped();
    void aReplyOnTheOwnThreadIsHeardAtOnce();
    void aReplyOnTheOwnThreadLetsNoWaitingOneThrough();
};

void callElsewhere(const boost::function<void(int)>& callback, int reply)
{
    std::thread(callback, reply).join();
}

void LatestRepliesTest::aReplyFromAnotherThreadIsHeard()
{
    Receiver receiver;
    callElsewhere(receiver.ask(), 1);
    QCOMPARE(receiver.heard, QVector<int>());
    QCoreApplication::processEvents();
    QCOMPARE(receiver.heard, QVector<int>({1}));
}

void LatestRepliesTest::aReplyThatWaitsWhenTheNextRequestIsSentIsDropped()
{
    Receiver receiver;
    callElsewhere(receiver.ask(), 1);
    callElsewhere(receiver.ask(), 2);
    QCoreApplication::processEvents();
    QCOMPARE(receiver.heard, QVector<int>({2}));
}

void LatestRepliesTest::aReplyThatComesAfterTheNextRequestIsDropped()
{
    Receiver receiver;
    const auto first = receiver.ask();
    const auto second = receiver.ask();
    callElsewhere(second, 2);
    callElsewhere(first, 1);
    QCoreApplication::processEvents();
    QCOMPARE(receiver.heard, QVector<int>({2}));
}

void LatestRepliesTest::aReplyOnTheOwnThreadIsHeardAtOnce()
{
    Receiver receiver;
    receiver.ask()(1);
    QCOMPARE(receiver.heard, QVector<int>({1}));
}

void LatestRepliesTest::aReplyOnTheOwnThreadLetsNoWaitingOneThrough()
{
    Receiver receiver;
    callElsewhere(receiver.ask(), 1);
    receiver.ask()(2);
    QCoreApplication::processEvents();
    QCOMPARE(receiver.heard, QVector<int>({2}));
}

TEST_WITH_WIDGETS(LatestRepliesTest)
#include "tst_latest_replies.moc"
