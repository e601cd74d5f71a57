// SPDX-License-Identifier: Apache-2.0
#include "InstitutionFixture.h"

#include "support/qav/Client.h"

#include <nvservice/CInstitutionInfo.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QBoxLayout>
#include <QtTest>

#include <boost/make_shared.hpp>

namespace institution_test
{

nvservice::IDataPtr institution(int id, const std::string& name, const std::string& tag)
{
    const auto record = boost::make_shared<nvservice::CInstitutionInfo>();
    record->institutionId = id;
    record->name = name;
    record->setSystemTag(tag);
    return record;
}

void typeChinese(QWidget* edit, const QString& text)
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(edit, &event);
}

void InstitutionFixture::setUp()
{
    m_log = std::make_unique<support::UnexpectedLog>();
    m_shanghai = boost::make_shared<support::CFakeTransport>();
    m_shenzhen = boost::make_shared<support::CFakeTransport>();
    m_shanghaiReply = support::replyWith({institution(11, "远山基金", "SH"), institution(12, "招商银行", "SH"),
                                          institution(13, "招商证券", "SH"), institution(14, "同名机构", "SH")});
    m_shanghai->onQuery = [this](const nvservice::CKolmQueryDataReq&, const auto& handler) {
        handler(m_shanghaiReply);
    };
    m_shenzhen->onQuery = [](const nvservice::CKolmQueryDataReq&, const auto& handler) {
        handler(support::replyWith({institution(21, "重庆信托", "SZ"), institution(22, "同名机构", "SZ")}));
    };
    support::centre().addServer("上海分系统", "SH", m_shanghai);
    support::centre().addServer("深圳分系统", "SZ", m_shenzhen);

    m_holder = std::make_unique<Holder>();
    m_edit = new QAV::CManagerSearchLineEdit(EditId, m_holder.get());
    m_edit->setDependUser(false);
    m_other = new QLineEdit(m_holder.get());
    auto* const layout = new QVBoxLayout(m_holder.get());
    layout->addWidget(m_edit);
    layout->addWidget(m_other);
    m_holder->show();
    QApplication::setActiveWindow(m_holder.get());
    m_edit->setFocus();
}

void InstitutionFixture::tearDown()
{
    m_holder.reset();
    support::centre().shutDown();
    support::logInAs({});
    m_log.reset();
}

void InstitutionFixture::load(const std::string& tag)
{
    const int before = m_holder->loads;
    m_edit->setSystemTag(tag);
    QTRY_COMPARE(m_holder->loads, before + 1);
}

QStringList InstitutionFixture::matches() const
{
    const QWidget* const popup = QApplication::activePopupWidget();
    const auto* const view = qobject_cast<const QAbstractItemView*>(popup);
    QStringList texts;
    for (int row = 0; view && row < view->model()->rowCount(); ++row) {
        texts << view->model()->index(row, 0).data().toString();
    }
    return texts;
}

int InstitutionFixture::chosen() const
{
    QString tag("old");
    const int id = m_edit->getCurrentManagerId(tag);
    if ((id == None) != tag.isEmpty()) {
        return -1;
    }
    return id;
}

} // namespace institution_test
