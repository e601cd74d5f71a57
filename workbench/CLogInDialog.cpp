// SPDX-License-Identifier: Apache-2.0
#include "CLogInDialog.h"

#include "CSession.h"
#include "CUserSettings.h"

#include <WQ/ButtonPainter.h>
#include <WQ/CLineEdit.h>
#include <WQ/CMediumNormalButton.h>
#include <WQ/CSimpleTextWidget.h>
#include <WQ/CUiResourceManager.h>
#include <WQ/EventType.h>
#include <WQ/ResourceKeys.h>
#include <WQ/StringConversion.h>

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace workbench
{

namespace
{

constexpr int EditWidth = 240;
constexpr int EditHeight = 30;
constexpr int ButtonWidth = 116;
constexpr int ErrorHeight = 18;
constexpr QSize LeastSize(400, 268);

} // namespace

CLogInDialog::CLogInDialog(CSession& session, CUserSettings& settings, QWidget* parent)
    : WQ::CCommonDialog(parent), m_session(session), m_settings(settings)
{
    setObjectName("logIn");
    setTitle(tr("登录 - 风控管理客户端"));
    setInnerWidget(createUi());
    m_user->setText(settings.lastUser());
    // Large fonts need more.
    m_sizeWithoutError = LeastSize.expandedTo(minimumSizeHint());
    setFixedSize(m_sizeWithoutError);
    CLogInDialog::onUiResourceChanged();
}

QWidget* CLogInDialog::createUi()
{
    auto* page = new QWidget(this);
    m_user = new WQ::CLineEdit(UserEdit, page);
    m_user->setObjectName("user");
    m_user->setEmptyHintText(tr("请输入用户名"));
    m_user->setAccessibleName(tr("用户名"));
    m_password = new WQ::CLineEdit(PasswordEdit, page);
    m_password->setObjectName("password");
    m_password->setEmptyHintText(tr("请输入密码"));
    m_password->setAccessibleName(tr("密码"));
    m_password->setEchoMode(QLineEdit::Password);
    m_error = new QLabel(page);
    m_error->setObjectName("error");
    m_error->setTextFormat(Qt::PlainText);
    m_error->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_error->setWordWrap(true);
    m_logIn = new WQ::CMediumNormalButton(LogInButton, WQ::PrimaryButton, page);
    m_logIn->setObjectName("logInButton");
    m_close = new WQ::CMediumNormalButton(CloseButton, WQ::NormalButton, page);
    m_close->setText(tr("退出"));

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(14);
    grid->setVerticalSpacing(12);
    const auto row = [&](int line, const QString& text, QWidget* edit) {
        auto* const label = new WQ::CSimpleTextWidget(false, 0, text, page);
        label->setMinimumWidth(label->sizeHint().width());
        grid->addWidget(label, line, 0, Qt::AlignRight | Qt::AlignVCenter);
        edit->setMinimumSize(EditWidth, qMax(EditHeight, edit->sizeHint().height()));
        grid->addWidget(edit, line, 1);
    };
    row(0, tr("用户名"), m_user);
    row(1, tr("密码"), m_password);
    grid->addWidget(m_error, 2, 1);
    m_error->setFixedWidth(EditWidth);
    grid->setRowMinimumHeight(2, ErrorHeight);
    grid->setColumnStretch(2, 1);
    grid->setColumnMinimumWidth(0, 56);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    for (WQ::CMediumNormalButton* button : {m_logIn, m_close}) {
        button->setMinimumWidth(ButtonWidth);
        buttons->addWidget(button);
    }
    grid->setRowMinimumHeight(3, 46);
    grid->addLayout(buttons, 3, 1, Qt::AlignBottom);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(28, 30, 32, 20);
    layout->addLayout(grid);
    layout->addStretch(1);
    setBusy(false);
    return page;
}

void CLogInDialog::setCredentials(const QString& user, const QString& password)
{
    m_user->setText(user);
    m_password->setText(password);
}

void CLogInDialog::submit()
{
    if (isBusy()) {
        return;
    }
    const QString user = m_user->getText().trimmed();
    if (user.isEmpty()) {
        showError(tr("请输入用户名"));
        m_user->setFocus();
        return;
    }
    showError({});
    setBusy(true);
    m_session.logIn(user, m_password->getText(), [this, user](const CSession::Outcome& outcome) {
        setBusy(false);
        m_password->clear();
        if (!outcome.error.isSuccess()) {
            showError(WQ::sToQs(outcome.error.errorMsg()));
            m_password->setFocus();
            return;
        }
        m_settings.setLastUser(user);
        done(1);
    });
}

QString CLogInDialog::errorText() const
{
    return m_error->text();
}

bool CLogInDialog::isBusy() const
{
    return !m_logIn->isEnabled();
}

void CLogInDialog::done(int result)
{
    if (isBusy()) {
        m_session.logOut();
        setBusy(false);
    }
    WQ::CCommonDialog::done(result);
}

bool CLogInDialog::handleEvent(int type, int id, int param, QString text, void* data)
{
    if (type == WQ::ButtonOrEnter && id == UserEdit) {
        m_password->setFocus();
        return true;
    }
    if ((type == WQ::ButtonOrEnter && id == PasswordEdit) || (type == WQ::ButtonClicked && id == LogInButton)) {
        submit();
        return true;
    }
    if (type == WQ::ButtonClicked && id == CloseButton) {
        done(0);
        return true;
    }
    return WQ::CCommonDialog::handleEvent(type, id, param, std::move(text), data);
}

void CLogInDialog::showEvent(QShowEvent* event)
{
    WQ::CCommonDialog::showEvent(event);
    (m_user->getText().isEmpty() ? m_user : m_password)->setFocus();
}

void CLogInDialog::setBusy(bool busy)
{
    m_user->setEnabled(!busy);
    m_password->setEnabled(!busy);
    m_logIn->setEnabled(!busy);
    m_logIn->setText(busy ? tr("正在登录…") : tr("登录"));
}

void CLogInDialog::showError(const QString& text)
{
    m_error->setText(text);
    const int height = text.isEmpty() ? 0 : m_error->heightForWidth(EditWidth);
    setFixedSize(m_sizeWithoutError + QSize(0, qMax(0, height - ErrorHeight)));
}

void CLogInDialog::onUiResourceChanged()
{
    WQ::CCommonDialog::onUiResourceChanged();
    QPalette palette;
    palette.setColor(QPalette::WindowText, WQ::CUiResourceManager::instance()->colour(WQ::key::GlobalRise));
    m_error->setPalette(palette);
}

} // namespace workbench
