// SPDX-License-Identifier: Apache-2.0
#include "Stages.h"

#include "Hands.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPointer>
#include <QtTest>

namespace tour
{

namespace
{

class Player;
Player* g_innermost = nullptr;

void fail(const QString& text)
{
    QTest::qFail(qPrintable(text), __FILE__, __LINE__);
}

/// Ends whatever stops the user, so that the failed test can go on to its end.
void closeModal(QWidget* modal)
{
    if (auto* const asked = qobject_cast<QDialog*>(modal)) {
        asked->done(0);
    } else {
        modal->close();
    }
}

QString describe(const QWidget& modal)
{
    QStringList texts;
    for (const QLabel* const label : modal.findChildren<QLabel*>()) {
        texts << label->text();
    }
    return QString("“%1” (%2)").arg(modal.windowTitle(), texts.join(' '));
}

class Player
{
public:
    explicit Player(const std::vector<Stage>& stages) : m_below(g_innermost), m_stages(stages)
    {
        g_innermost = this;
        QObject::connect(&m_timer, &QTimer::timeout, [this] { look(); });
        m_timer.start(5);
    }
    ~Player() { g_innermost = m_below; }

    bool isOver() const { return m_next == m_stages.size() || QTest::currentTestFailed(); }
    QString nextTitle() const { return isOver() ? QString() : m_stages[m_next].title; }
    /// Whether the widget is the one that is being played on, here or where this play began.
    bool isPlayingOn(const QWidget* modal) const
    {
        return m_stage == modal || (m_below && m_below->isPlayingOn(modal));
    }

private:
    void look()
    {
        QWidget* const modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible() || (m_below && m_below->isPlayingOn(modal))) {
            return;
        }
        if (QTest::currentTestFailed()) {
            closeModal(modal);
            return;
        }
        if (m_next < m_stages.size() && !m_stages[m_next].below.isEmpty() &&
            modal->windowTitle() == m_stages[m_next].below) {
            return;
        }
        if (m_next == m_stages.size() || modal->windowTitle() != m_stages[m_next].title) {
            fail(QString("instead of “%1” came %2").arg(nextTitle(), describe(*modal)));
            closeModal(modal);
            return;
        }
        const Stage& stage = m_stages[m_next++];
        m_stage = modal;
        stage.act(*modal);
        const QPointer<QWidget> played = m_stage;
        m_stage.clear();
        if (played && played->isVisible()) {
            if (!QTest::currentTestFailed()) {
                fail(QString("%1 was left open").arg(describe(*played)));
            }
            closeModal(played);
        }
    }

    Player* const m_below;
    const std::vector<Stage>& m_stages;
    std::size_t m_next = 0;
    QPointer<QWidget> m_stage;
    QTimer m_timer;
};

Stage messageBox(const QString& title, const std::function<bool(const QString&)>& isText, const QString& expected,
                 const QString& answer, const std::function<void(QWidget&)>& look)
{
    return {title,
            [=](QWidget& modal) {
                QStringList texts;
                for (const QLabel* const label : modal.findChildren<QLabel*>()) {
                    if (!label->text().isEmpty()) {
                        texts << label->text();
                    }
                }
                QVERIFY2(texts.size() == 1 && isText(texts.first()),
                         qPrintable(QString("“%1” instead of “%2”").arg(texts.join('|'), expected)));
                if (look) {
                    look(modal);
                }
                clickButton(modal, answer);
            },
            {}};
}

} // namespace

Stage dialog(const QString& title, std::function<void(QWidget&)> act)
{
    return {title, std::move(act), {}};
}

Stage over(const QString& dialogTitle, Stage stage)
{
    stage.below = dialogTitle;
    return stage;
}

Stage box(const QString& title, const QString& text, const QString& answer, std::function<void(QWidget&)> look)
{
    return messageBox(title, [text](const QString& shown) { return shown == text; }, text, answer, look);
}

Stage boxLike(const QString& title, const QRegularExpression& text, const QString& answer,
              std::function<void(QWidget&)> look)
{
    const QRegularExpression whole(QRegularExpression::anchoredPattern(text.pattern()));
    return messageBox(
        title, [whole](const QString& shown) { return whole.match(shown).hasMatch(); }, text.pattern(), answer, look);
}

void play(const std::function<void()>& trigger, const std::vector<Stage>& stages)
{
    const Player player(stages);
    trigger();
    if (!QTest::qWaitFor([&] { return player.isOver(); }, Patience)) {
        fail(QString("“%1” did not come").arg(player.nextTitle()));
    }
}

Watch::Watch()
{
    QObject::connect(&m_timer, &QTimer::timeout, [] {
        QWidget* const modal = QApplication::activeModalWidget();
        const bool isStage = g_innermost && (!g_innermost->isOver() || g_innermost->isPlayingOn(modal));
        if (!modal || !modal->isVisible() || isStage) {
            return;
        }
        if (!QTest::currentTestFailed()) {
            fail(QString("nobody expected %1").arg(describe(*modal)));
        }
        closeModal(modal);
    });
    m_timer.start(100);
}

} // namespace tour
