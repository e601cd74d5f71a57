// SPDX-License-Identifier: Apache-2.0
#include <QAV/CAccountRcEmailWidget.h>

#include <WQ/CAutoKeyboardLineEdit.h>
#include <WQ/CCheckBox.h>
#include <WQ/CStandardSimpleTable.h>
#include <WQ/StringConversion.h>

#include <QCoreApplication>
#include <QRegularExpression>

namespace QAV
{

namespace
{

enum EEmailRuleColumn { RuleColumn, RecipientsColumn, SubjectColumn, EnabledColumn, ColumnCount };

constexpr int EmailRuleTableId = 1279;
constexpr int RecipientsWidth = 360;
constexpr int SubjectWidth = 260;

QString joinRecipients(const std::vector<std::string>& recipients)
{
    QStringList texts;
    for (const std::string& recipient : recipients) {
        texts << WQ::sToQs(recipient);
    }
    return texts.join(QStringLiteral("; "));
}

/// Splits addresses at blanks, and at ASCII and Chinese commas and semicolons.
std::vector<std::string> splitRecipients(const QString& text)
{
    static const QRegularExpression separators(QStringLiteral("[\\s;,；，、]+"));
    std::vector<std::string> recipients;
    for (const QString& recipient : text.split(separators, Qt::SkipEmptyParts)) {
        recipients.push_back(WQ::qsToS(recipient));
    }
    return recipients;
}

} // namespace

struct CAccountRcEmailWidget::Private {
    void showRule(const QString& key, const nvservice::CEmailRC& rule);

    std::string m_accountKey;
    QMap<QString, nvservice::CEmailRC> m_rules;
    WQ::CStandardSimpleTable* m_table = nullptr;
};

CAccountRcEmailWidget::CAccountRcEmailWidget(QWidget* parent)
    : CBaseWidget(QStringLiteral("account_rc_email"), false, parent), m_d(std::make_unique<Private>())
{
    m_d->m_table = new WQ::CStandardSimpleTable(EmailRuleTableId, this);
    m_d->m_table->setFlags(m_d->m_table->flags() & ~WQ::TableCellSelection);
    m_d->m_table->setColumnCount(ColumnCount);
    m_d->m_table->setHeaderText(RuleColumn, QCoreApplication::translate("QAV", "风控规则"));
    m_d->m_table->setHeaderText(RecipientsColumn, QCoreApplication::translate("QAV", "收件人"));
    m_d->m_table->setHeaderText(SubjectColumn, QCoreApplication::translate("QAV", "邮件主题"));
    m_d->m_table->setHeaderText(EnabledColumn, QCoreApplication::translate("QAV", "启用"));
    m_d->m_table->setColumnWidth(RecipientsColumn, RecipientsWidth);
    m_d->m_table->setColumnWidth(SubjectColumn, SubjectWidth);
    m_d->m_table->setAccessibleName(QCoreApplication::translate("QAV", "邮件通知规则"));
    setInnerStretchWidget(m_d->m_table, 0, 0, 0, 0);
}

CAccountRcEmailWidget::~CAccountRcEmailWidget() = default;

void CAccountRcEmailWidget::setAccountKey(const std::string& accountKey)
{
    m_d->m_accountKey = accountKey;
}

const std::string& CAccountRcEmailWidget::accountKey() const
{
    return m_d->m_accountKey;
}

void CAccountRcEmailWidget::setInfo(QMap<QString, nvservice::CEmailRC>& rules)
{
    m_d->m_table->clear();
    m_d->m_rules = rules;
    for (auto rule = rules.cbegin(); rule != rules.cend(); ++rule) {
        m_d->showRule(rule.key(), rule.value());
    }
    m_d->m_table->updateTable();
}

void CAccountRcEmailWidget::fillDatas(std::vector<nvservice::CEmailRC>& rules) const
{
    for (nvservice::CEmailRC rule : std::as_const(m_d->m_rules)) {
        if (!m_d->m_accountKey.empty()) {
            rule.accountKey = m_d->m_accountKey;
        }
        rules.push_back(std::move(rule));
    }
}

void CAccountRcEmailWidget::Private::showRule(const QString& key, const nvservice::CEmailRC& rule)
{
    const int row = m_table->appendRow();
    m_table->setItemText(row, RuleColumn, key, false);
    const auto putEdit = [&](int column, const QString& name, const QString& hint, const QString& text, auto change) {
        const auto create = [this, key, name, hint, text, change](QWidget* parent) {
            auto* const edit = new WQ::CAutoKeyboardLineEdit(parent);
            edit->setText(text);
            edit->setEmptyHintText(hint);
            edit->setAccessibleName(name);
            connect(edit, &QLineEdit::textEdited, edit,
                    [this, key, change](const QString& typed) { change(m_rules[key], typed); });
            return edit;
        };
        m_table->setItemText(row, column, text, false);
        m_table->setItemWidget(row, column, WQ::CStandardSimpleTable::WidgetFactory(create), 0, false);
    };
    putEdit(RecipientsColumn, QCoreApplication::translate("QAV", "%1的收件人").arg(key),
            QCoreApplication::translate("QAV", "多个收件人以分号分隔"), joinRecipients(rule.recipients),
            [](nvservice::CEmailRC& changed, const QString& typed) { changed.recipients = splitRecipients(typed); });
    putEdit(SubjectColumn, QCoreApplication::translate("QAV", "%1的邮件主题").arg(key), QString(),
            WQ::sToQs(rule.subject),
            [](nvservice::CEmailRC& changed, const QString& typed) { changed.subject = WQ::qsToS(typed); });
    const auto createCheck = [this, key](QWidget* parent) {
        auto* const check = new WQ::CCheckBox(0, QString(), parent);
        check->setChecked(m_rules[key].enabled);
        check->setAccessibleName(QCoreApplication::translate("QAV", "启用%1的邮件通知").arg(key));
        connect(check, &QCheckBox::toggled, check, [this, key](bool checked) { m_rules[key].enabled = checked; });
        return check;
    };
    m_table->setItemWidget(row, EnabledColumn, WQ::CStandardSimpleTable::WidgetFactory(createCheck), Qt::AlignCenter,
                           false);
}

} // namespace QAV
