// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nvservice/CAccountGroupRCConfig.h>
#include <nvservice/CCategoryInfo.h>

#include <QStringList>

#include <boost/shared_ptr.hpp>

#include <array>
#include <deque>
#include <optional>
#include <utility>
#include <vector>

namespace risk_test
{

/// A group as the whole installation knows it.
struct GroupKey {
    int server = 0;
    int id = 0;

    bool operator==(const GroupKey& other) const { return server == other.server && id == other.id; }
};

using ConfigPtr = boost::shared_ptr<nvservice::CAccountGroupRCConfig>;
using Categories = std::vector<boost::shared_ptr<nvservice::CCategoryInfo>>;

/// A reply that has become a signal, or is about to.
struct RiskReply {
    enum EKind { Config, CategoryList, Save };

    EKind kind = Config;
    int number = 0; ///< of the load or the save that it answers
    GroupKey group;
    QString error; ///< empty: a success
    ConfigPtr config;
    Categories offered;
};

/// The risk settings dialog in plain words: what it shows, covers, tells and sends, without widgets, threads and
/// signals. A box stops it, as it stops the dialog's slot; what happens meanwhile happens to the same model.
class RiskModel
{
public:
    /// The trade types that have a tab.
    static constexpr std::array<nvservice::EZvTraderType, 2> TabTypes = {nvservice::EZvTraderType::Future,
                                                                         nvservice::EZvTraderType::Stock};
    enum EPage { ReverseOrderPage, WashTradePage, PageCount };

    /// Opens a group; its load has this number.
    int open(const GroupKey& group);
    /// What a save sends, with its number; nothing when it sends nothing.
    std::optional<std::pair<int, ConfigPtr>> save();

    /// A reply has reached the service thread's callback.
    void post(RiskReply reply);
    /// Handles the posted replies up to the next box, whose text and title it returns; nothing: there was none.
    std::optional<QStringList> runToBox();
    /// The box that was opened last is closed.
    void closeBox();

    // What the user does; none of it has an effect while the dialog is covered.
    bool toggle(bool nvservice::CRatProofSetting::* field);
    void addEntry(nvservice::EZvTraderType type, const std::string& code);
    void addLimit();
    void removeFirstLimit();
    /// Everything that the picker offers is chosen.
    void chooseAll(EPage page);
    /// Grows whenever what the picker offers is replaced.
    int offers() const { return m_offers; }

    bool isCovered() const { return m_isCovered; }
    bool coversWhole() const { return m_coversWhole; }
    const std::optional<GroupKey>& group() const { return m_group; }
    const nvservice::CAccountGroupRCRule& lists() const { return m_lists; }
    const nvservice::CRatProofSetting& exempt() const { return m_exempt; }
    QStringList limitRemarks() const;
    QStringList exemptNames(EPage page) const;

private:
    static std::vector<std::int32_t>& idsOf(nvservice::CRatProofSetting& setting, EPage page);
    void showExempt(EPage page);
    bool handle(const RiskReply& reply, QStringList& box);
    void takeConfig(const ConfigPtr& config);
    void finishLoad();

    std::optional<GroupKey> m_group;
    int m_load = 0;
    int m_save = 0;
    bool m_hasConfig = false;
    bool m_hasCategories = false;
    ConfigPtr m_config;
    bool m_isCovered = false;
    bool m_coversWhole = false;
    Categories m_offered;
    int m_offers = 0;
    nvservice::CAccountGroupRCRule m_lists;
    std::vector<nvservice::CAssetsRC> m_limits;
    /// What the check boxes of the exempt pages show, and what their tables do.
    nvservice::CRatProofSetting m_exempt;
    std::array<Categories, PageCount> m_chosen;
    std::deque<RiskReply> m_posted;
    /// The boxes that are open, each with the reply that it tells about.
    std::vector<RiskReply> m_boxes;
};

} // namespace risk_test
