// SPDX-License-Identifier: Apache-2.0
#include "CManualDialog.h"

#include <WQ/CUiResourceManager.h>
#include <WQ/ResourceKeys.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QHBoxLayout>
#include <QListWidget>
#include <QRegularExpression>
#include <QStyle>
#include <QTextBrowser>
#include <QTextTable>

namespace workbench
{

namespace
{

constexpr int PagesWidth = 170;
constexpr int PictureWidth = 740;
constexpr int CellPadding = 5;

/// Shows pictures no wider than a page.
class CPage : public QTextBrowser
{
public:
    QVariant loadResource(int type, const QUrl& name) override
    {
        const QVariant resource = QTextBrowser::loadResource(type, name);
        QImage picture;
        if (type != QTextDocument::ImageResource || !picture.loadFromData(resource.toByteArray())) {
            return resource;
        }
        return picture.width() > PictureWidth ? picture.scaledToWidth(PictureWidth, Qt::SmoothTransformation) : picture;
    }
};

/// Markdown says nothing of how tables look.
void layOutTables(const QTextDocument& document)
{
    for (QTextFrame* const frame : document.rootFrame()->childFrames()) {
        if (auto* const table = qobject_cast<QTextTable*>(frame)) {
            QTextTableFormat format = table->format();
            format.setCellPadding(CellPadding);
            format.setCellSpacing(0);
            format.setBorderCollapse(true);
            format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
            format.setBorderBrush(WQ::CUiResourceManager::instance()->colour(WQ::key::BorderStrong));
            table->setFormat(format);
        }
    }
}

QString textOf(const QString& fileName)
{
    QFile file(QDir(CManualDialog::folder()).filePath(fileName));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

QString CManualDialog::folder()
{
    return QDir::cleanPath(QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(QAV_MANUAL_FOLDER));
}

CManualDialog::CManualDialog(QWidget* parent) : CClosableDialog(parent), m_pages(new QListWidget), m_page(new CPage)
{
    setObjectName("manual");
    setTitle(tr("使用手册"));
    m_pages->setObjectName("manualPages");
    m_pages->setAccessibleName(tr("目录"));
    m_page->setObjectName("manualPage");
    m_page->setAccessibleName(tr("正文"));
    auto* const pages = new QHBoxLayout;
    pages->setSpacing(10);
    pages->addWidget(m_pages);
    pages->addWidget(m_page, 1);
    contents().addLayout(pages);
    resize(1000, 680);

    connect(m_pages, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
        const QUrl url = QUrl::fromLocalFile(QDir(folder()).filePath(item->data(Qt::UserRole).toString()));
        if (url != m_page->source()) {
            m_page->setSource(url);
        }
    });
    connect(m_page, &QTextBrowser::sourceChanged, this, [this](const QUrl& url) {
        layOutTables(*m_page->document());
        for (int row = 0; row < m_pages->count(); ++row) {
            if (m_pages->item(row)->data(Qt::UserRole).toString() == url.fileName()) {
                m_pages->setCurrentRow(row);
            }
        }
    });
    fillPages();
    fitPages();
    m_pages->setFocus();
}

void CManualDialog::fillPages()
{
    const auto add = [this](const QString& title, const QString& file) {
        auto* const item = new QListWidgetItem(title, m_pages);
        item->setData(Qt::UserRole, file);
    };
    const QString start = QStringLiteral("index.md");
    const QString text = textOf(start);
    if (text.isEmpty()) {
        m_page->setPlainText(tr("没有找到使用手册：%1").arg(folder()));
        return;
    }
    add(tr("快捷键和目录"), start);
    static const QRegularExpression link("^\\* \\[([^\\]]+)\\]\\(([a-z-]+\\.md)\\)",
                                         QRegularExpression::MultilineOption);
    for (auto match = link.globalMatch(text); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        add(found.captured(1), found.captured(2));
    }
    m_pages->setCurrentRow(0);
}

void CManualDialog::fitPages()
{
    const int scrollBar = m_pages->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    m_pages->setFixedWidth(qMax(PagesWidth, m_pages->sizeHintForColumn(0) + 2 * m_pages->frameWidth() + scrollBar));
}

void CManualDialog::onUiResourceChanged()
{
    CClosableDialog::onUiResourceChanged();
    fitPages();
    // The colours of links and tables are part of the page; the palette of the application changes last.
    QMetaObject::invokeMethod(m_page, &QTextBrowser::reload, Qt::QueuedConnection);
}

} // namespace workbench
