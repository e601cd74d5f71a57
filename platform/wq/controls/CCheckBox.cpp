// SPDX-License-Identifier: Apache-2.0
#include <WQ/CCheckBox.h>
#include <WQ/CEventDeliverer.h>

#include <QStyleOptionButton>
#include <QStylePainter>

namespace WQ
{

namespace
{

/// How much closer letters may be set, as a share of the font's height.
constexpr qreal MaxSqueeze = 0.1;

} // namespace

struct CCheckBox::Private {
    int id;
};

CCheckBox::CCheckBox(int id, const QString& text, QWidget* parent) : QCheckBox(parent), m_d(new Private{id})
{
    setText(text);
    connect(this, &QCheckBox::clicked, this,
            [this](bool checked) { deliverEvent(this, ButtonClicked, m_d->id, checked ? 1 : 0); });
}

CCheckBox::~CCheckBox() = default;

int CCheckBox::id() const
{
    return m_d->id;
}

void CCheckBox::setText(const QString& text)
{
    setAccessibleName(text.trimmed());
    QCheckBox::setText(text);
}

void CCheckBox::onUiResourceChanged()
{
    update();
}

void CCheckBox::paintEvent(QPaintEvent*)
{
    QStyleOptionButton option;
    initStyleOption(&option);
    QStylePainter painter(this);
    const int room = style()->subElementRect(QStyle::SE_CheckBoxContents, &option, this).width();
    const qreal missing = option.fontMetrics.horizontalAdvance(option.text) - room;
    if (missing > 0) {
        QFont narrow = font();
        const qreal squeeze = qMin(missing / option.text.size(), MaxSqueeze * option.fontMetrics.height());
        narrow.setLetterSpacing(QFont::AbsoluteSpacing, -squeeze);
        painter.setFont(narrow);
        option.fontMetrics = QFontMetrics(narrow);
        if (option.fontMetrics.horizontalAdvance(option.text) > room) {
            option.text = option.fontMetrics.elidedText(option.text, Qt::ElideRight, room, Qt::TextShowMnemonic);
        }
    }
    painter.drawControl(QStyle::CE_CheckBox, option);
}

} // namespace WQ
