// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <WQ/ButtonData.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/IBaseHpfTableData.h>
#include <WQ/IBaseHpfTableModel.h>

#include <string>
#include <vector>

namespace bench
{

/// What a reply says of one group.
struct Group {
    int id;
    std::string name;
    std::string institution;
    int accounts;
    int server;
};

/// `count` groups: names all different, a few hundred institutions, four servers.
std::vector<Group> makeGroups(int count);
const QString& serverName(int server);

/// A row of five fields, as the account group panel has them.
class GroupRow : public WQ::IBaseHpfTableData
{
public:
    QString getDisplayQString(int column) const override;
    QString getQStringValue(int column) const override;
    int getIntValue(int column) const override;
    double getDoubleValue(int) const override { return InvalidDouble; }
    std::int64_t getInt64Value(int) const override { return InvalidInt64; }
    QColor getTextColor(int) const override;
    QString getKey() const override;

    int m_id = -1;
    QString m_name;
    int m_count = 0;
    QString m_institution;
    QString m_server;
};

void fillRow(GroupRow& row, const Group& group);
/// The three buttons of a row, made anew each time as a panel does that asks for rights per button.
QVector<WQ::ButtonData> makeButtons();

class GroupModel : public WQ::IBaseHpfTableModel
{
public:
    explicit GroupModel(QObject* parent = nullptr) : IBaseHpfTableModel(true, parent) {}
    int getColumnCount() const override { return 5; }
    QString getHeaderText(int column) const override;
    int getValueKind(int column) const override;
};

} // namespace bench
