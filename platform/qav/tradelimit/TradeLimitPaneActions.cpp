// SPDX-License-Identifier: Apache-2.0
// What the user does to a list: adding, changing, pasting, importing and exporting.
#include "lookup/CLookUpEdit.h"
#include "tradelimit/CImportReportDialog.h"
#include "tradelimit/CTradeLimitModel.h"
#include "tradelimit/CTradeLimitPane.h"
#include "tradelimit/TradeLimitChecks.h"

#include <WQ/CComboBox.h>
#include <WQ/CMessageBox.h>
#include <WQ/CMessageTip.h>
#include <WQ/CStandardHpfTable.h>
#include <WQ/StringConversion.h>
#include <utils/TextEncoding.h>

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>

#include <algorithm>

namespace QAV
{

namespace
{

constexpr int TipSeconds = 6;
constexpr int TipWidth = 480;
/// Securities that are offered at most: nobody reads more.
constexpr std::size_t MaxOffers = 100;
constexpr qint64 MaxFileSize = qint64(64) * 1024 * 1024;

const QString ImportTitle = QStringLiteral("导入名单");
const QString CsvFilter = QStringLiteral("CSV文件 (*.csv *.txt);;所有文件 (*)");

bool looksLikeCode(const QString& text)
{
    return securityCodeProblem(text).isEmpty() &&
           std::any_of(text.begin(), text.end(), [](QChar letter) { return letter.isDigit(); });
}

void showTip(QWidget* at, const QString& text, WQ::EMessageLevel level)
{
    WQ::CMessageTip::showTip(at, Qt::AlignBottom | Qt::AlignLeft, text, TipSeconds, level, TipWidth);
}

} // namespace

std::vector<int> CTradeLimitPane::offersFor(const QString& typed)
{
    m_chosenSecurity = -1;
    // A load that failed is tried again with the next text, not with each letter.
    if (m_directory.error().isEmpty() || typed.size() <= 1) {
        m_directory.load();
    }
    return m_directory.find(typed, MaxOffers);
}

QString CTradeLimitPane::offerText(int security) const
{
    const CSecurityDirectory::Security& offer = m_directory.security(security);
    return QStringLiteral("%1 %2").arg(offer.code, offer.name);
}

int CTradeLimitPane::securityOf(const QString& typed, QString& problem) const
{
    if (!m_directory.isLoaded()) {
        return -1;
    }
    if (m_chosenSecurity >= 0 && offerText(m_chosenSecurity).simplified() == typed) {
        return m_chosenSecurity;
    }
    const QString first = typed.section(QLatin1Char(' '), 0, 0);
    for (const QString& code : {typed, first}) {
        const int security = m_directory.indexOfCode(code);
        if (security >= 0) {
            return security;
        }
    }
    const std::vector<int> found = m_directory.find(typed, MaxOffers);
    const auto named = std::find_if(found.begin(), found.end(), [&](int security) {
        return m_directory.security(security).name.simplified() == typed;
    });
    if (named != found.end()) {
        return *named;
    }
    if (looksLikeCode(first)) {
        return -1;
    }
    if (found.size() == 1) {
        return found.front();
    }
    if (found.size() > 1) {
        problem = QStringLiteral("与“%1”相符的证券不止一个，请从列表中选择").arg(typed);
    } else {
        problem = QStringLiteral("没有找到与“%1”相符的证券，请输入证券代码").arg(typed.left(MaxSecurityCodeLength));
    }
    return -1;
}

QString CTradeLimitPane::readTyped(nvservice::CTradeLimitEntry& entry) const
{
    const QString typed = m_securityEdit->text().simplified();
    QString problem;
    const int security = typed.isEmpty() ? -1 : securityOf(typed, problem);
    if (!problem.isEmpty()) {
        return problem;
    }
    if (security >= 0) {
        entry.securityCode = WQ::qsToS(m_directory.security(security).code);
        entry.securityName = WQ::qsToS(m_directory.security(security).name);
    } else {
        entry.securityCode = WQ::qsToS(typed.section(QLatin1Char(' '), 0, 0));
        entry.securityName = WQ::qsToS(typed.section(QLatin1Char(' '), 1));
    }
    entry.listKind = chosenListKind();
    entry.direction = chosenDirection();
    const QString code = WQ::sToQs(entry.securityCode);
    problem = entryProblem(m_book, entry);
    return problem.isEmpty() && m_directory.lacks(code) ? unknownSecurity(code) : problem;
}

void CTradeLimitPane::addTyped()
{
    m_securityEdit->hideOffers();
    nvservice::CTradeLimitEntry entry;
    const QString problem = readTyped(entry);
    if (!problem.isEmpty()) {
        m_securityEdit->selectAll();
        m_securityEdit->setFocus();
        showTip(m_securityEdit, problem, WQ::MessageError);
        return;
    }
    WQ::CMessageTip::hideTip(m_securityEdit);
    m_book.append({entry}, QStringLiteral("添加"));
    m_model->announce();
    m_table->setCurrentKey(CTradeLimitRow::keyOf(m_book.rows().back()->id()));
    m_securityEdit->clear();
    m_chosenSecurity = -1;
}

void CTradeLimitPane::removeSelected()
{
    m_book.remove(selectedIds(), QStringLiteral("删除"));
}

void CTradeLimitPane::openChangeMenu(const QPoint& at, bool above)
{
    auto* const menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("changeMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const auto kind : {nvservice::EZVRCListKind::Black, nvservice::EZVRCListKind::White}) {
        connect(
            menu->addAction(QStringLiteral("改为%1").arg(listKindName(kind))), &QAction::triggered, this,
            [this, kind] { changeSelected([kind](nvservice::CTradeLimitEntry& entry) { entry.listKind = kind; }); });
    }
    if (m_directionCombo) {
        menu->addSeparator();
        for (const auto direction :
             {nvservice::EZVRCDirection::Both, nvservice::EZVRCDirection::Buy, nvservice::EZVRCDirection::Sell}) {
            const QString name = directionName(direction, m_book.traderType());
            connect(menu->addAction(QStringLiteral("改为%1").arg(name)), &QAction::triggered, this, [this, direction] {
                changeSelected([direction](nvservice::CTradeLimitEntry& entry) { entry.direction = direction; });
            });
        }
    }
    menu->popup(above ? at - QPoint(0, menu->sizeHint().height()) : at);
}

void CTradeLimitPane::changeSelected(const std::function<void(nvservice::CTradeLimitEntry&)>& edit)
{
    m_book.change(selectedIds(), edit, QStringLiteral("修改"));
}

void CTradeLimitPane::paste()
{
    const QString text = QApplication::clipboard()->text();
    const QChar separator =
        text.contains(QLatin1Char('\t')) || !text.contains(QLatin1Char(',')) ? QLatin1Char('\t') : QLatin1Char(',');
    takeIn(text, separator, QStringLiteral("剪贴板"), false);
}

void CTradeLimitPane::chooseImportFile()
{
    // Names that the file does not give are there by the time the user has chosen it.
    m_directory.load();
    const unsigned load = m_loadNumber;
    const QString fileName = QFileDialog::getOpenFileName(this, ImportTitle, QString(), CsvFilter);
    if (!fileName.isEmpty() && !isOvertaken(load)) {
        importFile(fileName);
    }
}

void CTradeLimitPane::importFile(const QString& fileName)
{
    const auto refuse = [&](const QString& text) { WQ::CMessageBox::warning(this, ImportTitle, text); };
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return refuse(QStringLiteral("无法读取文件“%1”：%2").arg(fileName, file.errorString()));
    }
    if (file.size() > MaxFileSize) {
        return refuse(QStringLiteral("文件“%1”过大").arg(fileName));
    }
    QString text;
    const utils::NVError error = utils::decodeText(file.readAll(), utils::ETextEncoding::Detected, text);
    if (error.code() == utils::EErrorCode::Conflict) {
        return refuse(QStringLiteral("“%1”：%2，无法判断。请另存为“CSV UTF-8”后再导入")
                          .arg(fileName, QString::fromStdString(error.errorMsg())));
    }
    if (!error.isSuccess()) {
        return refuse(QStringLiteral("“%1”：%2").arg(fileName, QString::fromStdString(error.errorMsg())));
    }
    const QString head = text.left(text.indexOf(QLatin1Char('\n')));
    const QChar separator = head.contains(QLatin1Char('\t')) ? QLatin1Char('\t') : QLatin1Char(',');
    takeIn(text, separator, QFileInfo(fileName).fileName(), true);
}

void CTradeLimitPane::takeIn(const QString& text, QChar separator, const QString& source, bool alwaysReport)
{
    std::vector<utils::CsvRow> rows;
    utils::CCsvReader reader(text, separator);
    for (utils::CsvRow row; reader.next(row);) {
        rows.push_back(row);
    }
    if (!reader.error().isSuccess()) {
        WQ::CMessageBox::warning(
            this, ImportTitle, QStringLiteral("%1：%2").arg(source, QString::fromStdString(reader.error().errorMsg())));
        return;
    }
    TradeLimitImportDefaults defaults;
    defaults.listKind = chosenListKind();
    defaults.direction = chosenDirection();
    defaults.nameOf = [this](const QString& code) {
        const int security = m_directory.indexOfCode(code);
        return security < 0 ? QString() : m_directory.security(security).name;
    };
    defaults.isUnknown = [this](const QString& code) { return m_directory.lacks(code); };
    const TradeLimitImport import = readTradeLimits(rows, m_book, defaults);
    if (import.rows.empty()) {
        WQ::CMessageBox::information(this, ImportTitle, QStringLiteral("%1中没有证券").arg(source));
        return;
    }
    if (alwaysReport || import.refusedCount() > 0) {
        const unsigned load = m_loadNumber;
        CImportReportDialog report(source, import, this);
        if (report.exec() != 1 || isOvertaken(load)) {
            return;
        }
    }
    m_book.append(import.entries, QStringLiteral("导入"));
    m_model->announce();
    showTip(m_table, QStringLiteral("已加入%1条").arg(import.entries.size()), WQ::MessageInformation);
}

void CTradeLimitPane::exportFile()
{
    const QString title = QStringLiteral("导出名单");
    QString fileName = QFileDialog::getSaveFileName(this, title, QStringLiteral("黑白名单.csv"), CsvFilter);
    if (fileName.isEmpty()) {
        return;
    }
    if (QFileInfo(fileName).suffix().isEmpty()) {
        fileName += QStringLiteral(".csv");
    }
    QString error;
    if (!m_table->exportCsv(fileName, &error)) {
        WQ::CMessageBox::warning(this, title, error);
    }
}

} // namespace QAV
