// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAV/IChangeListener.h>
#include <QAV/IkolmDockableWidget.h>

#include <cstdint>
#include <memory>

namespace QAV
{

/// Shows who changed what and when, restores earlier states, and lists the findings of the consistency check.
///
/// With the right to read the audit it shows all attempts, otherwise the history of one group.
///
/// The only class that the plug-in exports; the client creates it by name. Lives on the UI thread, as do its callbacks.
class Q_DECL_EXPORT CHistoryPanel final : public IkolmDockableWidget, public IChangeListener
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit CHistoryPanel(QWidget* parent);
    ~CHistoryPanel() override;

    void setParam(const QString& param) override;
    QString param() const override;
    void switchSystem(int index, QString serverName) override;
    void onActive() override;
    bool handleEvent(int type, int id, int param, QString text, void* data) override;
    void onChanged(const QString& serverName, const std::vector<nvservice::CChangeInfoPtr>& changes,
                   bool isComplete) override;

private:
    struct Parts;

    void createUi();
    void connectParts();
    bool hasServer() const;
    /// Asks for all that is shown.
    void load();
    /// Has the data checked if the findings are in front and not up to date.
    void checkIfShown();
    /// Asks for the names that the search offers and the comparison shows.
    void loadNames();
    void search();
    void showStateAt(std::int64_t at);
    void showGroup(int groupId, const QString& groupName);
    /// Opens the last change of the group, which a restore has made; -1: of a group that was there no more.
    void showRestored(std::int32_t groupId);

    std::unique_ptr<Parts> m_parts;
};

} // namespace QAV
