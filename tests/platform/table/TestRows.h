// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "support/FixtureTest.h"

#include <WQ/CBaseTableColumnMultiButtonsDelegate.h>
#include <WQ/CEventDeliverer.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/IBaseHpfTableData.h>
#include <WQ/IBaseHpfTableModel.h>

#include <QAbstractItemView>
#include <QHeaderView>
#include <QStringList>

#include <memory>
#include <vector>

namespace support
{

/// Columns of the rows below.
enum RowColumn { Name, Count, Place, Price, Buttons, Columns };

struct Row : WQ::IBaseHpfTableData {
    Row(const QString& rowKey, const QString& rowName, int rowCount = 0, const QString& rowPlace = {},
        double rowPrice = 0)
        : key(rowKey), name(rowName), count(rowCount), place(rowPlace), price(rowPrice)
    {
    }

    QString getDisplayQString(int column) const override;
    QString getQStringValue(int column) const override;
    int getIntValue(int column) const override { return column == Count ? count : InvalidInt; }
    double getDoubleValue(int column) const override { return column == Price ? price : InvalidDouble; }
    std::int64_t getInt64Value(int) const override { return InvalidInt64; }
    QColor getTextColor(int) const override { return textColour; }
    QString getKey() const override { return key; }
    QString getDisplayUnit(int column) const override { return column == Price ? unit : QString(); }
    bool isShowUnderTip(int column) const override { return column == Place && !tip.isEmpty(); }
    QString getUnderTipText(int) const override { return tip; }

    QString key;
    QString name;
    int count;
    QString place;
    double price;
    QString unit;
    QString tip;
    QColor textColour = QColor(Qt::white);
    mutable int shown = 0; ///< How often the display text was asked for.
};

using RowPtr = boost::shared_ptr<Row>;

class Model : public WQ::IBaseHpfTableModel
{
public:
    explicit Model(bool gather = true) : IBaseHpfTableModel(gather) {}
    int getColumnCount() const override { return Columns; }
    QString getHeaderText(int column) const override;
    int getValueKind(int column) const override;
    double getCompareTick(int column) const override { return column == Price ? tick : 0; }
    WQ::HpfColumnEntry getColumnEntry(int column) const override;

    RowPtr add(const QString& key, const QString& name, int count = 0, const QString& place = {}, double price = 0);
    /// Display texts of a column, in the order shown.
    QStringList texts(int column = Name) const;
    QStringList keys() const;

    double tick = 0;
};

struct Event {
    int type, id, param;
    QString text;
    const void* data;
};

struct Sink : WQ::CEventDeliverer {
    bool handleEvent(int type, int id, int param, QString text, void* data) override
    {
        events.push_back({type, id, param, text, data});
        if (then) {
            then();
        }
        return true;
    }
    std::vector<Event> events;
    std::function<void()> then;
};

/// A shown table of the rows above, with a column of buttons.
struct ShownTable {
    explicit ShownTable(int tableId = 7, int menuFlags = 255, QSize size = {900, 500});

    /// Adds `count` rows "k0", "k1", ... with two buttons each and lets the table show them.
    void fill(int count);
    QRect cell(int row, int column) const;
    QPoint buttonAt(int row, int position) const;
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
    void clickHeader(int column) const;
    /// Runs the requests that have been made.
    static void settle();

    Sink sink;
    std::unique_ptr<WQ::CStandardHpfTable> table;
    Model* model = nullptr;
    WQ::CBaseTableColumnMultiButtonsDelegate* buttons = nullptr;
    QAbstractItemView* view = nullptr;
};

/// A test each of whose functions has a table of its own.
class ShownTableTest : public FunctionTest
{
protected:
    void begin() override { m_shown = std::make_unique<ShownTable>(); }
    void end() override { m_shown.reset(); }

    std::unique_ptr<ShownTable> m_shown;
};

} // namespace support
