#include <WQ/CCheckBox.h>
#include <WQ/CEventDeliverer.h>

namespace WQ
{

CCheckBox::CCheckBox(int id, const QString& text, QWidget* parent) : QCheckBox(parent), m_id(id)
{
    setText(text);
    connect(this, &QCheckBox::clicked, this,
            [this](bool checked) { deliverEvent(this, ButtonClicked, m_id, checked ? 1 : 0); });
}

CCheckBox::~CCheckBox() = default;

void CCheckBox::setText(const QString& text)
{
    setAccessibleName(text.trimmed());
    QCheckBox::setText(text);
}

void CCheckBox::onUiResourceChanged()
{
    update();
}

} // namespace WQ
