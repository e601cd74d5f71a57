#include "panel/CLatestReplies.h"

#include <QtTest>

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

class TestLatestReplies : public QObject
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

void TestLatestReplies::aReplyFromAnotherThreadIsHeard()
{
    Receiver receiver;
    callElsewhere(receiver.ask(), 1);
    QCOMPARE(receiver.heard, QVector<int>());
    QCoreApplication::processEvents();
    QCOMPARE(receiver.heard, QVector<int>({1}));
}

void TestLatestReplies::aReplyThatWaitsWhenTheNextRequestIsSentIsDropped()
{
    Receiver receiver;
    callElsewhere(receiver.ask(), 1);
    callElsewhere(receiver.ask(), 2);
    QCoreApplication::processEvents();
    QCOMPARE(receiver.heard, QVector<int>({2}));
}

void TestLatestReplies::aReplyThatComesAfterTheNextRequestIsDropped()
{
    Receiver receiver;
    const auto first = receiver.ask();
    const auto second = receiver.ask();
    callElsewhere(second, 2);
    callElsewhere(first, 1);
    QCoreApplication::processEvents();
    QCOMPARE(receiver.heard, QVector<int>({2}));
}

void TestLatestReplies::aReplyOnTheOwnThreadIsHeardAtOnce()
{
    Receiver receiver;
    receiver.ask()(1);
    QCOMPARE(receiver.heard, QVector<int>({1}));
}

void TestLatestReplies::aReplyOnTheOwnThreadLetsNoWaitingOneThrough()
{
    Receiver receiver;
    callElsewhere(receiver.ask(), 1);
    receiver.ask()(2);
    QCoreApplication::processEvents();
    QCOMPARE(receiver.heard, QVector<int>({2}));
}

QTEST_MAIN(TestLatestReplies)
#include "tst_latest_replies.moc"
