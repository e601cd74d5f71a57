// SPDX-License-Identifier: Apache-2.0
#include "hpf/CHpfFilterPopup.h"

#include "tablekit/CContainsMatcher.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/IBaseHpfTableModel.h>
#include <WQ/ResourceKeys.h>

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace WQ
{

namespace
{

constexpr int MostValues = 10000;
constexpr int ValueHeight = 24;

} // namespace

CHpfFilterValues::CHpfFilterValues(const QStringList& values, const QSet<QString>* checked, QObject* parent)
    : QAbstractListModel(parent), m_values(values)
{
    for (const QString& value : values) {
        m_checked.push_back(!checked || checked->contains(value));
    }
    search({});
}

void CHpfFilterValues::search(const QString& text)
{
    beginResetModel();
    m_listed.clear();
    const CContainsMatcher matcher(text);
    for (int i = 0; i < m_values.size(); ++i) {
        if (matcher.matches(m_values.at(i))) {
            m_listed.push_back(i);
        }
    }
    endResetModel();
}

void CHpfFilterValues::setAllChecked(bool checked)
{
    for (int value : m_listed) {
        m_checked[static_cast<std::size_t>(value)] = checked;
    }
    if (!m_listed.empty()) {
        emit dataChanged(index(0), index(rowCount() - 1), {Qt::CheckStateRole});
    }
}

Qt::CheckState CHpfFilterValues::allChecked() const
{
    const auto count = std::count_if(m_listed.begin(), m_listed.end(),
                                     [this](int value) { return m_checked[static_cast<std::size_t>(value)] != 0; });
    if (count == 0) {
        return Qt::Unchecked;
    }
    return count == static_cast<std::ptrdiff_t>(m_listed.size()) ? Qt::Checked : Qt::PartiallyChecked;
}

QSet<QString> CHpfFilterValues::checkedValues() const
{
    QSet<QString> values;
    for (int value : m_listed) {
        if (m_checked[static_cast<std::size_t>(value)]) {
            values.insert(m_values.at(value));
        }
    }
    return values;
}

bool CHpfFilterValues::isEverythingChecked() const
{
    return m_listed.size() == m_checked.size() && allChecked() == Qt::Checked;
}

int CHpfFilterValues::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_listed.size());
}

QVariant CHpfFilterValues::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const int value = m_listed[static_cast<std::size_t>(index.row())];
    if (role == Qt::CheckStateRole) {
        return m_checked[static_cast<std::size_t>(value)] ? Qt::Checked : Qt::Unchecked;
    }
    if (role == Qt::SizeHintRole) {
        return QSize(0, ValueHeight);
    }
    if (role == Qt::DisplayRole) {
        return m_values.at(value).isEmpty() ? QCoreApplication::translate("WQ", "（空白）") : m_values.at(value);
    }
    return {};
}

bool CHpfFilterValues::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || role != Qt::CheckStateRole) {
        return false;
    }
    const int listed = m_listed[static_cast<std::size_t>(index.row())];
    m_checked[static_cast<std::size_t>(listed)] = value.toInt() == Qt::Checked;
    emit dataChanged(index, index, {role});
    return true;
}

Qt::ItemFlags CHpfFilterValues::flags(const QModelIndex&) const
{
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable | Qt::ItemNeverHasChildren;
}

CHpfFilterPopup::CHpfFilterPopup(IBaseHpfTableModel& model, int column, QWidget* parent)
    : QFrame(parent, Qt::Popup), m_model(model), m_column(column), m_search(new QLineEdit(this)),
      m_all(new QCheckBox(QCoreApplication::translate("WQ", "全选"), this)), m_list(new QListView(this))
{
    setObjectName(QStringLiteral("tableFilterPopup"));
    setAccessibleName(QCoreApplication::translate("WQ", "筛选：%1").arg(model.getHeaderText(column)));
    setAttribute(Qt::WA_DeleteOnClose);
    const FilterPair filter = model.columnFilter(column);
    m_values = new CHpfFilterValues(model.filterValues(column, MostValues, &m_complete),
                                    filter.first == FilterOneOf ? &filter.second : nullptr, this);

    m_search->setObjectName(QStringLiteral("tableFilterSearch"));
    m_search->setPlaceholderText(QCoreApplication::translate("WQ", "搜索文字或拼音"));
    m_search->setAccessibleName(QCoreApplication::translate("WQ", "搜索"));
    m_search->setClearButtonEnabled(true);
    m_search->installEventFilter(this);
    m_all->setObjectName(QStringLiteral("tableFilterAll"));
    m_list->setObjectName(QStringLiteral("tableFilterValues"));
    m_list->setAccessibleName(QCoreApplication::translate("WQ", "筛选值"));
    m_list->setModel(m_values);
    m_list->setUniformItemSizes(true);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->installEventFilter(this);

    auto* note = new QLabel(
        QCoreApplication::translate("WQ", "值太多，仅列出前%1项；输入文字后确定则按包含筛选").arg(MostValues), this);
    note->setWordWrap(true);
    note->setVisible(!m_complete);
    auto* ok = new QPushButton(QCoreApplication::translate("WQ", "确定"), this);
    ok->setObjectName(QStringLiteral("tableFilterOk"));
    auto* clear = new QPushButton(QCoreApplication::translate("WQ", "清除筛选"), this);
    clear->setObjectName(QStringLiteral("tableFilterClear"));
    clear->setEnabled(filter.first != FilterNone);
    auto* cancel = new QPushButton(QCoreApplication::translate("WQ", "取消"), this);
    cancel->setObjectName(QStringLiteral("tableFilterCancel"));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(clear);
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 10, 10, 10);
    layout->setSpacing(8);
    layout->addWidget(m_search);
    layout->addWidget(m_all);
    layout->addWidget(m_list, 1);
    layout->addWidget(note);
    layout->addLayout(buttons);
    resize(270, 340);

    connect(m_search, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_values->search(text);
        showAllChecked();
    });
    connect(m_all, &QCheckBox::clicked, this, [this] {
        // A click on a box that is checked in part checks everything.
        m_values->setAllChecked(m_all->checkState() != Qt::Unchecked);
        showAllChecked();
    });
    connect(m_values, &QAbstractItemModel::dataChanged, this, &CHpfFilterPopup::showAllChecked);
    // A click on the text checks as well as one on the box does.
    connect(m_list, &QListView::clicked, this, [this](const QModelIndex& index) {
        const QRect box = m_list->visualRect(index);
        const int x = m_list->viewport()->mapFromGlobal(QCursor::pos()).x();
        if (x > box.left() + box.height()) {
            m_values->setData(index, index.data(Qt::CheckStateRole) == Qt::Checked ? Qt::Unchecked : Qt::Checked,
                              Qt::CheckStateRole);
        }
    });
    connect(ok, &QPushButton::clicked, this, &CHpfFilterPopup::accept);
    connect(clear, &QPushButton::clicked, this, &CHpfFilterPopup::clearFilter);
    connect(cancel, &QPushButton::clicked, this, &QWidget::close);
    if (filter.first == FilterContains) {
        m_search->setText(filter.second.values().value(0));
    }
    showAllChecked();
}

void CHpfFilterPopup::openBelow(const QRect& globalButton)
{
    const QScreen* screen = QGuiApplication::screenAt(globalButton.center());
    const QRect area = (screen ? screen : QGuiApplication::primaryScreen())->availableGeometry();
    QPoint at(globalButton.left(), globalButton.bottom() + 3);
    if (at.y() + height() > area.bottom()) {
        at.setY(std::max(area.top(), globalButton.top() - height() - 3));
    }
    at.setX(std::clamp(at.x(), area.left(), std::max(area.left(), area.right() - width())));
    move(at);
    show();
    m_search->setFocus(Qt::PopupFocusReason);
}

void CHpfFilterPopup::showAllChecked()
{
    const Qt::CheckState state = m_values->allChecked();
    m_all->setTristate(state == Qt::PartiallyChecked);
    m_all->setCheckState(state);
}

void CHpfFilterPopup::accept()
{
    const QString text = m_search->text();
    if (!m_complete && !text.isEmpty()) {
        m_model.filterColumn(m_column, {FilterContains, {text}});
    } else if (m_values->isEverythingChecked()) {
        m_model.clearColumnFilter(m_column);
    } else {
        m_model.filterColumn(m_column, {FilterOneOf, m_values->checkedValues()});
    }
    close();
}

void CHpfFilterPopup::clearFilter()
{
    m_model.clearColumnFilter(m_column);
    close();
}

bool CHpfFilterPopup::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress) {
        return QFrame::eventFilter(watched, event);
    }
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        accept();
        return true;
    }
    if (key == Qt::Key_Escape) {
        close();
        return true;
    }
    if (watched == m_search && key == Qt::Key_Down) {
        m_list->setFocus(Qt::TabFocusReason);
        m_list->setCurrentIndex(m_values->index(0));
        return true;
    }
    if (watched == m_list && key == Qt::Key_Up && m_list->currentIndex().row() <= 0) {
        m_search->setFocus(Qt::BacktabFocusReason);
        return true;
    }
    return QFrame::eventFilter(watched, event);
}

void CHpfFilterPopup::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), CUiResourceManager::instance()->colour(key::PanelBackground));
    painter.setPen(CUiResourceManager::instance()->colour(key::BorderStrong));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace WQ
