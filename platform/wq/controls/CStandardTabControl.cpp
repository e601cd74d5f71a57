// SPDX-License-Identifier: Apache-2.0
#include <WQ/CJiuGongBackgroundPainter.h>
#include <WQ/CStandardTabControl.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionTab>
#include <QTabBar>

#include <array>

namespace WQ
{

namespace
{

enum EHeaderImage { CurrentImage, OtherImage, CurrentHoveredImage, OtherHoveredImage, HeaderImageCount };

constexpr QMargins ImagePatches(8, 8, 8, 4);
constexpr int TabHeight = 30;
constexpr int TabTextMargin = 18;

class CTabFace : public CJiuGongBackgroundPainter
{
public:
    void paint(QPainter& painter, const QRect& rect) const { paintBackground(painter, rect); }
};

} // namespace

class CStandardTabControl::CTabBar : public QTabBar
{
public:
    explicit CTabBar(QWidget* parent) : QTabBar(parent)
    {
        setFocusPolicy(Qt::StrongFocus);
        setAccessibleName(QCoreApplication::translate("WQ", "页签"));
        setDrawBase(false);
        setExpanding(false);
        setElideMode(Qt::ElideNone);
        setUsesScrollButtons(true);
        setAttribute(Qt::WA_Hover);
        setMouseTracking(true);
    }

    void setImages(const std::array<QString, HeaderImageCount>& keys)
    {
        for (int i = 0; i < HeaderImageCount; ++i) {
            m_faces[size_t(i)].setBackgroundImage(keys[size_t(i)], ImagePatches);
        }
        m_painted = !keys[CurrentImage].isEmpty();
        update();
    }

protected:
    QSize tabSizeHint(int index) const override
    {
        return QSize(fontMetrics().horizontalAdvance(tabText(index)) + 2 * TabTextMargin, TabHeight);
    }
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }

    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() == Qt::Key_Home) {
            setCurrentIndex(nextEnabled(-1, 1));
        } else if (event->key() == Qt::Key_End) {
            setCurrentIndex(nextEnabled(count(), -1));
        } else {
            QTabBar::keyPressEvent(event);
        }
    }

    void mouseMoveEvent(QMouseEvent* event) override
    {
        hover(tabAt(event->pos()));
        QTabBar::mouseMoveEvent(event);
    }

    void leaveEvent(QEvent* event) override
    {
        hover(-1);
        QTabBar::leaveEvent(event);
    }

    void paintEvent(QPaintEvent* event) override
    {
        if (!m_painted) {
            QTabBar::paintEvent(event);
            return;
        }
        const CUiResourceManager& theme = *CUiResourceManager::instance();
        QPainter painter(this);
        for (int i = 0; i < count(); ++i) {
            const QRect tab = tabRect(i);
            if (!tab.intersects(event->rect())) {
                continue;
            }
            const bool current = i == currentIndex();
            const bool hovered = i == m_hovered && isTabEnabled(i);
            const int face =
                current ? (hovered ? CurrentHoveredImage : CurrentImage) : (hovered ? OtherHoveredImage : OtherImage);
            m_faces[size_t(face)].paint(painter, tab);
            painter.setPen(theme.colour(!isTabEnabled(i) ? key::TextDisabled : current ? key::Text : key::TextWeak));
            painter.drawText(tab, Qt::AlignCenter | Qt::TextSingleLine, tabText(i));
            if (current && hasFocus()) {
                painter.setPen(theme.colour(key::FocusRing));
                painter.drawRect(tab.adjusted(4, 5, -5, -5));
            }
        }
    }

private:
    int nextEnabled(int from, int step) const
    {
        for (int i = from + step; i >= 0 && i < count(); i += step) {
            if (isTabEnabled(i)) {
                return i;
            }
        }
        return currentIndex();
    }

    void hover(int index)
    {
        if (index == m_hovered) {
            return;
        }
        m_hovered = index;
        update();
    }

    std::array<CTabFace, HeaderImageCount> m_faces;
    bool m_painted = false;
    int m_hovered = -1;
};

struct CStandardTabControl::Private {
    CTabBar* bar;
};

CStandardTabControl::CStandardTabControl(QWidget* parent) : QTabWidget(parent), m_d(new Private{new CTabBar(this)})
{
    setTabBar(m_d->bar);
}

CStandardTabControl::~CStandardTabControl() = default;

void CStandardTabControl::setTabHeaderImage(const QString& current, const QString& other, const QString& currentHovered,
                                            const QString& otherHovered)
{
    m_d->bar->setImages({current, other, currentHovered, otherHovered});
}

int CStandardTabControl::addTabWidget(const QString& text, QWidget* page)
{
    if (!page) {
        return -1;
    }
    if (page->accessibleName().isEmpty()) {
        page->setAccessibleName(text);
    }
    return addTab(page, text);
}

QWidget* CStandardTabControl::tabWidget(int index) const
{
    return widget(index);
}

void CStandardTabControl::onUiResourceChanged()
{
    m_d->bar->update();
    update();
}

} // namespace WQ
