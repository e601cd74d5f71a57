#include "RuleEditorWindow.h"

#include <QAV/CKolmClientCenter.h>
#include <WQ/CUiResourceManager.h>
#include <utils/CSingletonT.h>

#include <boost/make_shared.hpp>

#include <QApplication>

#include <algorithm>

namespace rule_editor_test
{

namespace
{

QAV::CKolmClientCenter& center()
{
    return *utils::CSingletonT<QAV::CKolmClientCenter>::instance();
}

} // namespace

RuleEditorWindow::RuleEditorWindow() : CBaseWidget(QStringLiteral("window"), true, nullptr)
{
    useTheme(QStringLiteral("dark"));
}

RuleEditorWindow::~RuleEditorWindow() = default;

void RuleEditorWindow::showWith(QWidget* editor, const QSize& size)
{
    setInnerStretchWidget(editor, 0, 0, 0, 0);
    resize(size);
    show();
    activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(this));
}

bool RuleEditorWindow::handleEvent(int, int, int, QString, void*)
{
    ++m_escapedEvents;
    return true;
}

void RuleEditorWindow::keepPicture(const QString& name) const
{
    const QString folder = qEnvironmentVariable("QAV_SCREENSHOT_DIR");
    if (folder.isEmpty())
        return;
    QPixmap picture = const_cast<RuleEditorWindow*>(this)->grab();
    // Lists and menus are windows of their own.
    for (QWidget* const popup : QApplication::topLevelWidgets()) {
        if (popup != this && popup->isVisible()) {
            QPainter painter(&picture);
            painter.drawPixmap(mapFromGlobal(popup->pos()), popup->grab());
        }
    }
    const QString theme = WQ::CUiResourceManager::instance()->theme();
    QVERIFY(picture.save(QStringLiteral("%1/%2_%3.png").arg(folder, name, theme)));
}

bool RuleEditorWindow::showsMissingResource() const
{
    const QImage image = const_cast<RuleEditorWindow*>(this)->grab().toImage();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == QColor(Qt::magenta))
                return true;
        }
    }
    return false;
}

OneServer::OneServer() : m_transport(boost::make_shared<support::CFakeTransport>())
{
    if (!center().addServer("深圳", "SZ", m_transport).isSuccess())
        qFatal("a server of an earlier test is still there");
}

OneServer::~OneServer()
{
    center().shutDown();
}

support::CFakeTransport::Query OneServer::takeQuery(int dataType, const std::string& queryKey)
{
    auto query = m_transport->takeQuery();
    if (query.request.dataType != dataType || query.request.queryKey != queryKey)
        qFatal("query %d %s came", query.request.dataType, query.request.queryKey.c_str());
    return query;
}

bool OneServer::isSilent()
{
    return m_transport->waitingQueries() == 0;
}

void useTheme(const QString& name)
{
    auto* const resources = WQ::CUiResourceManager::instance();
    static bool applied = false;
    if (!applied) {
        resources->applyTo(*qApp);
        applied = true;
    }
    QVERIFY(resources->setTheme(name));
}

void type(QWidget& edit, const QString& text)
{
    edit.setFocus();
    const bool isLatin = std::all_of(text.begin(), text.end(), [](QChar letter) { return letter.unicode() < 0x80; });
    if (isLatin) {
        QTest::keyClicks(&edit, text);
        return;
    }
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(&edit, &event);
}

} // namespace rule_editor_test
